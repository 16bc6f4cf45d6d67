// The options of every command that reads picture files.
#pragma once

#include "zqx/pictures/Reader.h"

namespace CLI {
class App;
}

namespace zqx::app {

/// Adds the limits on sizes, for commands that do not decode. The limits have to live as long as the command.
void addLimitOptions(CLI::App& command, pictures::Limits& limits);

/// Adds the limits on sizes, and who decodes within which bounds.
void addReadingOptions(CLI::App& command, pictures::ReadOptions& options);

} // namespace zqx::app
