// Only the option itself; zqx_tools estimates the memory that a task needs.
#include "options/MemoryOption.h"

#include <CLI/CLI.hpp>

#include "options/SizeOption.h"

namespace zqx::app {

void addMemoryOption(CLI::App& command, std::uint64_t& limit) {
    addSizeOption(command, "--max-memory", limit, "half of the memory",
                  "Memory to work in; pictures that need more are refused")
        ->group("Limits");
}

} // namespace zqx::app
