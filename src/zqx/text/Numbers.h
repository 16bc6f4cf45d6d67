// Numbers as text, the same in every locale.
#pragma once

#include <string>

namespace zqx::text {

/// A number in the fewest digits that read back as the same number: "0.1", "5", "1e+30".
std::string shortest(float number);
std::string shortest(double number);

/// The same without an exponent, for readers that do not understand exponents.
std::string shortestDecimal(float number);

/// A number rounded to a number of decimal places: "1.50".
std::string fixed(double number, int decimals);

/// A number rounded to a number of significant digits, without trailing zeros, and with an exponent if that is shorter,
/// like "%.6g".
std::string significant(double number, int digits = 6);

} // namespace zqx::text
