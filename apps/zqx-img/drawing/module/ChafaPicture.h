// Pictures for terminals, encoded by Chafa.
#pragma once

#include <string>

#include "terminal/TerminalPicture.h"

namespace zqx::app::drawing {

std::string encodeForTerminal(const TerminalPicture& picture);

} // namespace zqx::app::drawing
