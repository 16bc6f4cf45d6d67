// The terminal that standard output may be.
#pragma once

#include <string>

#include "terminal/TerminalPicture.h"

namespace zqx::app {

/// True if standard output is a terminal.
bool isTerminal();

/// The size of the terminal, or 80 by 24 characters of 10 by 20 pixels if unknown. COLUMNS and LINES in the environment
/// take precedence.
TerminalSize terminalSize();

/// True when the terminal shows UTF-8, going by the locale.
bool showsUnicode();

/// True on a terminal, unless NO_COLOR is set.
bool wantsColor();

/// Text without the control characters that a terminal would obey.
std::string harmless(std::string text);

/// Writes to standard output. @throws Error
void print(const std::string& text);

} // namespace zqx::app
