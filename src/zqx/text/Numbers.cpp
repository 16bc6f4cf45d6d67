// Uses std::to_chars, which is independent of the locale, with a buffer for the longest number.
#include "zqx/text/Numbers.h"

#include <array>
#include <charconv>
#include <limits>

namespace zqx::text {

namespace {

template <typename... Arguments>
std::string convert(Arguments... arguments) {
    constexpr std::size_t MOST_DECIMALS = 100;
    std::array<char, std::numeric_limits<double>::max_exponent10 + MOST_DECIMALS + 8> digits{};
    const auto [end, failure] = std::to_chars(digits.data(), digits.data() + digits.size(), arguments...);
    return failure == std::errc() ? std::string(digits.data(), end) : std::string();
}

} // namespace

std::string shortest(float number) {
    return convert(number);
}

std::string shortest(double number) {
    return convert(number);
}

std::string shortestDecimal(float number) {
    return convert(number, std::chars_format::fixed);
}

std::string fixed(double number, int decimals) {
    return convert(number, std::chars_format::fixed, decimals);
}

std::string significant(double number, int digits) {
    return convert(number, std::chars_format::general, digits);
}

} // namespace zqx::text
