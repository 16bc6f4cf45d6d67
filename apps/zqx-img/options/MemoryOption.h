// --max-memory: the memory that a command may use.
#pragma once

#include <cstdint>

namespace CLI {
class App;
}

namespace zqx::app {

/// Adds --max-memory. The limit must outlive the command.
/// @param limit in bytes; stays 0 if the option is not given
void addMemoryOption(CLI::App& command, std::uint64_t& limit);

} // namespace zqx::app
