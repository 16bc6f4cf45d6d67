// What this build of the program is: version, instruction set, libraries.
#pragma once

#include <string>

namespace zqx::app {

/// The text of --version: version and commit, instruction set, libraries and their versions.
std::string versionText();

} // namespace zqx::app
