// Where the program itself is, for finding what is installed with it.
#pragma once

#include <filesystem>

namespace zqx::pictures {

/// The folder of the running program's file, whatever it was called by; empty where that cannot be known.
std::filesystem::path programDirectory();

} // namespace zqx::pictures
