// Shell completions made from the command line.
#pragma once

#include <span>
#include <string>

#include "help/CommandText.h"

namespace zqx::app {

/// @param adjustments the names that --set accepts
std::string bashCompletion(const CommandText& program, std::span<const std::string> adjustments);
std::string zshCompletion(const CommandText& program, std::span<const std::string> adjustments);
std::string fishCompletion(const CommandText& program, std::span<const std::string> adjustments);

} // namespace zqx::app
