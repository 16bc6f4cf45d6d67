/// @file
/// Conversion of file names at the edge to wide-character system calls.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace qutil {

/// A UTF-8 string that converts to the platform's wide characters.
class XString {
public:
    /// @param utf8 copied
    explicit XString(std::string_view utf8) : mText(utf8) {}

    /// UTF-16 where wchar_t has 16 bits, else UTF-32. Malformed bytes become U+FFFD.
    std::wstring toWide() const {
        std::wstring wide;
        wide.reserve(mText.size());
        for (std::size_t i = 0; i < mText.size();) {
            append(wide, decodeAt(i));
        }
        return wide;
    }

private:
    static constexpr std::uint32_t REPLACEMENT = 0xFFFD;

    /// Length of a sequence and the payload of its first byte; length 0 for a byte that cannot start one.
    static std::pair<std::size_t, std::uint32_t> decodeLead(unsigned char byte) {
        if (byte < 0x80) {
            return {1, byte};
        }
        if (byte >= 0xC2 && byte < 0xE0) {
            return {2, byte & 0x1FU};
        }
        if (byte >= 0xE0 && byte < 0xF0) {
            return {3, byte & 0x0FU};
        }
        if (byte >= 0xF0 && byte < 0xF5) {
            return {4, byte & 0x07U};
        }
        return {0, 0};
    }

    /// Decodes the code point at a position and moves behind it.
    std::uint32_t decodeAt(std::size_t& position) const {
        const auto [length, lead] = decodeLead(static_cast<unsigned char>(mText[position++]));
        if (length == 0) {
            return REPLACEMENT;
        }
        std::uint32_t codePoint = lead;
        for (std::size_t i = 1; i < length; ++i, ++position) {
            if (position == mText.size() || (static_cast<unsigned char>(mText[position]) & 0xC0U) != 0x80U) {
                return REPLACEMENT;
            }
            codePoint = codePoint << 6 | (static_cast<unsigned char>(mText[position]) & 0x3FU);
        }
        constexpr std::uint32_t SMALLEST[] = {0, 0, 0x80, 0x800, 0x10000};
        const bool surrogate = codePoint >= 0xD800 && codePoint < 0xE000;
        return codePoint < SMALLEST[length] || codePoint > 0x10FFFF || surrogate ? REPLACEMENT : codePoint;
    }

    static void append(std::wstring& wide, std::uint32_t codePoint) {
        if (sizeof(wchar_t) == 2 && codePoint >= 0x10000) {
            wide += static_cast<wchar_t>(0xD800 + ((codePoint - 0x10000) >> 10));
            wide += static_cast<wchar_t>(0xDC00 + ((codePoint - 0x10000) & 0x3FF));
        } else {
            wide += static_cast<wchar_t>(codePoint);
        }
    }

    std::string mText;
};

} // namespace qutil
