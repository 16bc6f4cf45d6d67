// Where text leaves the program. File names and words from files may be any bytes; what is for people is cleaned here,
// wherever it goes: lines in a log are read in a terminal, too.
#pragma once

#include <string_view>

namespace zqx::app {

/// Writes a line on standard error, at once and cleaned. Failures go unnoticed, for there is nobody left to tell.
void writeErrorLine(std::string_view line) noexcept;

/// "zqx-img: ..." on standard error.
void complain(std::string_view text) noexcept;

/// "zqx-img: warning: ..." on standard error.
void printWarning(std::string_view text) noexcept;

/// Writes bytes on standard output, at once and as they are. False when that fails.
bool writeOutput(std::string_view bytes) noexcept;

/// Prints text of the program's own making: JSON, help, drawings. What it has in it from elsewhere is clean already.
/// @throws Error when standard output takes no more
void print(std::string_view text);

/// Prints a line for people, cleaned. @throws Error when standard output takes no more
void printLine(std::string_view line);

} // namespace zqx::app
