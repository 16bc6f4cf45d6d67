// Makes text from files and file names safe for terminals, logs and messages, where it could otherwise be taken for
// escape sequences or for lines of the program itself.
#pragma once

#include <string>
#include <string_view>

namespace zqx::text {

/// The characters that a reader of a text can display.
enum class Charset { UNICODE, ASCII };

/// Whether a character is merely displayed. This excludes control characters (C0, DEL, C1), line and paragraph
/// separators and characters that change the writing direction (Unicode Standard Annex 9), which can make a name look
/// like another. Joiners, which some scripts need, are harmless.
bool isHarmless(char32_t code);

/// The text as one line that is safe to display, such as "a\x1B[2J\nb.png" for a name with an escape character and a
/// line break. Characters that are not harmless become escapes as in C: \n, \r, \t, \x and two digits for control
/// characters and for bytes that are not UTF-8, \u and four digits for others. Backslashes are not changed.
/// @param charset with ASCII, other harmless characters become question marks
std::string printable(std::string_view text, Charset charset = Charset::UNICODE);

/// The text as one line, with a space in place of each character that is not harmless, and U+FFFD for bytes that are
/// not UTF-8.
std::string inOneLine(std::string_view text);

/// The text without spaces at the end.
std::string withoutTrailingSpaces(std::string text);

} // namespace zqx::text
