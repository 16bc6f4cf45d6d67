// How picture files are read: the options that every command which reads them has.
#pragma once

#include <cstdint>
#include <optional>

#include "LoadLimits.h"

namespace CLI {
class App;
}

namespace zqx::img::app {

/// What a picture file may ask for before it is refused, and who decodes it.
struct LoadOptions {
    LoadLimits limits;
    std::optional<bool> isolate;    ///< decode in a process of its own; not, where neither user nor command say
    std::uint64_t decodeMemory = 0; ///< bytes that this process may use; 0 for the default
    double decodeSeconds = 60.0;    ///< that it may take

    /// Adds the options to a command.
    void addTo(CLI::App& command);
    /// Adds those about sizes only, for commands that do not decode.
    void addLimitsTo(CLI::App& command);

    /// Isolates decoding where the user did not decide, if this system can.
    void isolateByDefault();
};

} // namespace zqx::img::app
