// The limit on memory, by the gate that runs of many pictures go through.
#include "options/MemoryOption.h"

#include <CLI/CLI.hpp>

#include "options/SizeOption.h"
#include "zqx/tools/batch/MemoryGate.h"

namespace zqx::app {

void MemoryOption::addTo(CLI::App& command) {
    addSizeOption(command, "--max-memory", chosen, "half of the memory",
                  "Memory to work in; a picture that needs more is refused")
        ->group("Limits");
}

std::uint64_t MemoryOption::limit() const {
    return chosen != 0 ? chosen : tools::defaultMemoryLimit();
}

void MemoryOption::require(const std::string& file, std::uint64_t bytes) const {
    tools::MemoryGate(limit()).admit(file, bytes);
}

} // namespace zqx::app
