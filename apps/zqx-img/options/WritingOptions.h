// The options of every command that writes picture files.
#pragma once

#include "zqx/pictures/Writer.h"

namespace CLI {
class App;
}

namespace zqx::app {

/// Adds --quality and --strip. The options must outlive the command.
void addWritingOptions(CLI::App& command, pictures::WriteOptions& options);

} // namespace zqx::app
