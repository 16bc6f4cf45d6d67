// Reads UTF-8 one character at a time. File names and text from files may contain arbitrary bytes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqx::text {

/// Replaces bytes that are not well-formed UTF-8 (Unicode Standard, 5.22).
constexpr char32_t REPLACEMENT_CHARACTER = 0xFFFD;

/// A character, or a stray byte that belongs to none.
struct Character {
    std::string_view bytes; ///< in the text that it was taken from
    char32_t code;          ///< REPLACEMENT_CHARACTER for a stray byte
    bool valid;             ///< false for a stray byte
};

/// Removes the first character from a text, which must not be empty. If the bytes are not well-formed (truncated,
/// overlong, a surrogate, beyond U+10FFFF; Unicode Standard, table 3-7), a single byte is removed, since the next one
/// may begin a character.
Character takeCharacter(std::string_view& text);

/// Whether a text is well-formed UTF-8.
bool isUtf8(std::string_view text);

/// The text with U+FFFD in place of each byte that belongs to no character.
std::string repairedUtf8(std::string_view text);

/// Appends a character, which must be a Unicode scalar value.
void appendUtf8(std::string& text, char32_t code);

/// The longest prefix of a text that has at most a number of bytes and ends with a whole character.
std::string_view prefix(std::string_view text, std::size_t bytes);

/// The number of characters; each stray byte counts as one.
std::size_t countCharacters(std::string_view text);

} // namespace zqx::text
