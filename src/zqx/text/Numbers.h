// Numbers as text, the same in every locale.
#pragma once

#include <string>

namespace zqx::text {

/// The fewest digits that read back as the same number: "0.1", "5", "1e+30".
std::string shortest(float number);
std::string shortest(double number);

/// The same without an exponent, for readers that know none.
std::string shortestDecimal(float number);

/// With so many digits behind the point, rounded: "1.50".
std::string fixed(double number, int decimals);

/// With so many digits in all, rounded, without zeros at the end, and with an exponent where that is shorter; as
/// "%.6g".
std::string significant(double number, int digits = 6);

} // namespace zqx::text
