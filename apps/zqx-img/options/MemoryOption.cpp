// The option alone: what work takes is estimated by the tools.
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
