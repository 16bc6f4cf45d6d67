// The terminal that standard output may be.
#pragma once

#include <string>

#include "terminal/TerminalPicture.h"

namespace zqx::app {

/// True when standard output is read by a person and not by a file or another program.
bool isTerminal();

/// The size of the terminal; where it does not tell, 80 by 24 characters of 10 by 20 pixels. COLUMNS and LINES in the
/// environment have precedence.
TerminalSize terminalSize();

/// True when the terminal shows UTF-8, going by the locale.
bool showsUnicode();

/// True on a terminal whose user has not asked for text without colours (NO_COLOR).
bool wantsColor();

/// Text without the control characters that a terminal would obey.
std::string harmless(std::string text);

/// Writes to standard output. @throws Error
void print(const std::string& text);

} // namespace zqx::app
