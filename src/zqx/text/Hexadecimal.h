// Hexadecimal digits for escape sequences.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zqx::text {

/// A number as upper-case hexadecimal digits, padded with zeros.
inline std::string hexadecimal(std::uint32_t number, std::size_t digits) {
    constexpr std::string_view DIGITS = "0123456789ABCDEF";
    std::string text(digits, '0');
    for (std::size_t i = digits; i-- > 0; number >>= 4U) {
        text[i] = DIGITS[number & 0xFU];
    }
    return text;
}

} // namespace zqx::text
