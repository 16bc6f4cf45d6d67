// Text from files and file names, made fit for terminals, logs and messages, where it could otherwise pass for commands
// or for lines of the program's own.
#pragma once

#include <string>
#include <string_view>

namespace zqx::text {

/// What the reader of a text can show.
enum class Charset { UNICODE, ASCII };

/// True for a character that is shown and does nothing else. Controls (C0, DEL, C1), line and paragraph separators and
/// what changes the direction of writing (Unicode Standard Annex 9) are none, as those could make a name look like
/// another; joiners, which some scripts are written with, are harmless.
bool isHarmless(char32_t code);

/// The text in one line that any terminal shows and none obeys: "a\x1B[2J\nb.png" for a name with an escape and a line
/// break. What is not harmless becomes an escape of C: \n, \r, \t, \x and two digits for controls and for bytes that
/// are not UTF-8, \u and four digits for others. Backslashes stay as they are.
/// @param charset ASCII: a question mark for each harmless character beyond it
std::string printable(std::string_view text, Charset charset = Charset::UNICODE);

/// The words of a library or of a file in one line: a space in place of each character that is not harmless, U+FFFD for
/// bytes that are not UTF-8.
std::string inOneLine(std::string_view text);

/// Without spaces at the end.
std::string withoutTrailingSpaces(std::string text);

} // namespace zqx::text
