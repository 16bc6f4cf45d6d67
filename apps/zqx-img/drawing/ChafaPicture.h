// Pictures for terminals, by Chafa.
#pragma once

#include <string>

#include "../TerminalPicture.h"

namespace zqx::img::app::drawing {

std::string encodeForTerminal(const TerminalPicture& picture);

} // namespace zqx::img::app::drawing
