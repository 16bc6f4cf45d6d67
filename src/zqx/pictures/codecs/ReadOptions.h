// How picture files are read.
#pragma once

#include <cstdint>
#include <optional>

#include "zqx/pictures/codecs/Limits.h"

namespace zqx::pictures {

/// What a picture file may ask for before it is refused, and who decodes it.
struct ReadOptions {
    Limits limits;
    std::optional<bool> isolate;    ///< decode in a process of its own; not, where neither user nor command say
    std::uint64_t decodeMemory = 0; ///< bytes that this process may use; 0 for the default
    double decodeSeconds = 60.0;    ///< that it may take

    /// Isolates decoding where the user did not decide, if this system can.
    void isolateByDefault();
};

} // namespace zqx::pictures
