// --max-memory: how much memory work on pictures may take.
#pragma once

#include <cstdint>
#include <string>

namespace CLI {
class App;
}

namespace zqx::app {

/// The limit of a command on its memory. Needs are estimates from the headers of files, rather too much than too
/// little.
struct MemoryOption {
    std::uint64_t chosen = 0; ///< bytes; 0 where the user did not choose

    void addTo(CLI::App& command);

    /// Bytes, half of the memory where the user did not choose.
    std::uint64_t limit() const;

    /// Refuses work on a file that needs more. @throws Error naming the file and the option
    void require(const std::string& file, std::uint64_t bytes) const;
};

} // namespace zqx::app
