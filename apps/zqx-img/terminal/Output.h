// All text output of the program. File names and text from files may contain arbitrary bytes; lines for people are made
// safe for terminals here, also in pipes, since logs are read in terminals, too.
#pragma once

#include <string_view>

namespace zqx::app {

/// Writes a line to standard error, unbuffered and made safe for terminals. Failures are ignored.
void writeErrorLine(std::string_view line) noexcept;

/// Writes an error message to standard error: "zqx-img: ...".
void complain(std::string_view text) noexcept;

/// Writes a warning to standard error: "zqx-img: warning: ...".
void printWarning(std::string_view text) noexcept;

/// Writes bytes to standard output, unbuffered and unchanged. False on failure.
bool writeOutput(std::string_view bytes) noexcept;

/// Prints text that is safe already: JSON, help, drawings.
/// @throws Error if standard output cannot be written
void print(std::string_view text);

/// Prints a line for people, made safe for terminals. @throws Error if standard output cannot be written
void printLine(std::string_view line);

} // namespace zqx::app
