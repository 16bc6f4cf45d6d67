// --max-memory: how much memory the work on pictures may take.
#pragma once

#include <cstdint>

namespace CLI {
class App;
}

namespace zqx::app {

/// Adds --max-memory. The limit has to live as long as the command.
/// @param limit in bytes; stays 0 where the user did not choose
void addMemoryOption(CLI::App& command, std::uint64_t& limit);

} // namespace zqx::app
