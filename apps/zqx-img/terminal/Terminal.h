// Properties of the terminal: its size and whether to use colours.
#pragma once

#include "terminal/System.h"
#include "terminal/TerminalPicture.h"

namespace zqx::app {

/// The size of the terminal, or 80 by 24 characters of 10 by 20 pixels if unknown. COLUMNS and LINES in the environment
/// take precedence.
TerminalSize terminalSize(StandardStream stream);

/// True if standard output is a terminal and NO_COLOR is not set.
bool wantsColor();

} // namespace zqx::app
