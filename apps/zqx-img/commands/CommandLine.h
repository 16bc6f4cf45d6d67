// The program's command line as one object.
#pragma once

#include <memory>

namespace CLI {
class App;
}

namespace zqx::app {

/// All commands and options, each ready to run when it is parsed.
std::unique_ptr<CLI::App> makeCommandLine();

} // namespace zqx::app
