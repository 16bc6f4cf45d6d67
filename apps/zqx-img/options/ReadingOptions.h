// The options of every command that reads picture files.
#pragma once

#include "zqx/pictures/Reader.h"

namespace CLI {
class App;
}

namespace zqx::app {

/// Adds the size limits, for commands that do not decode. The limits must outlive the command.
void addLimitOptions(CLI::App& command, pictures::Limits& limits);

/// Adds the size limits and the options of isolated decoding. The options must outlive the command.
void addReadingOptions(CLI::App& command, pictures::ReadOptions& options);

} // namespace zqx::app
