// Information about this build of the program.
#pragma once

#include <string>

namespace zqx::app {

/// The text of --version: version and commit, instruction set, libraries and their versions.
std::string versionText();

} // namespace zqx::app
