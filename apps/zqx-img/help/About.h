// What this build of the program is and does.
#pragma once

#include <string>

namespace zqx::app {

/// The instruction set that the library's kernels use on this processor, "AVX2".
std::string simdTarget();

/// The text of --version: version and commit, the libraries at work and their versions.
std::string versionText();

} // namespace zqx::app
