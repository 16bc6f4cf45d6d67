// The terminal that a stream may be: how large it is, and what may be drawn on it.
#pragma once

#include "terminal/System.h"
#include "terminal/TerminalPicture.h"

namespace zqx::app {

/// The size of the terminal; where it does not tell, 80 by 24 characters of 10 by 20 pixels. COLUMNS and LINES in the
/// environment have precedence.
TerminalSize terminalSize(StandardStream stream);

/// True when standard output is a terminal whose user has not asked for text without colours (NO_COLOR).
bool wantsColor();

} // namespace zqx::app
