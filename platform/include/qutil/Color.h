/// @file
/// Colour records that cross interfaces.
#pragma once

namespace qutil {

/// Red, green, blue and alpha; what they are encoded in is said where they are used.
struct EColor4f {
    float r; ///< red
    float g; ///< green
    float b; ///< blue
    float a; ///< alpha
};

/// Red, green and blue, as above.
struct EColor3f {
    float r; ///< red
    float g; ///< green
    float b; ///< blue
};

} // namespace qutil
