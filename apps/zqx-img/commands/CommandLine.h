// The command line of the program as one object.
#pragma once

#include <memory>

namespace CLI {
class App;
}

namespace zqx::app {

/// All commands and options. A command runs when it is parsed.
std::unique_ptr<CLI::App> makeCommandLine();

} // namespace zqx::app
