// UTF-8, read one character at a time. File names and texts from files may be any bytes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zqx::text {

/// What stands in for bytes that are no character (Unicode Standard, 5.22).
constexpr char32_t REPLACEMENT_CHARACTER = 0xFFFD;

/// A character, or a byte that belongs to none.
struct Character {
    std::string_view bytes; ///< of the text that it was taken from
    char32_t code;          ///< REPLACEMENT_CHARACTER for a stray byte
    bool valid;             ///< false for a stray byte
};

/// Takes the first character off a text, which must not be empty. Where the bytes are not well-formed (cut off,
/// overlong, a surrogate, beyond U+10FFFF; Unicode Standard, table 3-7), one byte is taken: the next may begin a
/// character.
Character takeCharacter(std::string_view& text);

/// True when all of a text is well-formed UTF-8.
bool isUtf8(std::string_view text);

/// The text with U+FFFD in place of each byte that belongs to no character.
std::string repairedUtf8(std::string_view text);

/// Appends a character, which must be a Unicode scalar value.
void appendUtf8(std::string& text, char32_t code);

/// The longest beginning of a text that has no more than so many bytes and ends with a whole character.
std::string_view prefix(std::string_view text, std::size_t bytes);

/// The number of characters; each stray byte counts as one.
std::size_t countCharacters(std::string_view text);

} // namespace zqx::text
