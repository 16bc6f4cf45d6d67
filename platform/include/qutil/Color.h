// Colour records that cross interfaces.
#pragma once

namespace qutil {

/// Red, green, blue and alpha; what they are encoded in is said where they are used.
struct EColor4f {
    float r;
    float g;
    float b;
    float a;
};

/// Red, green and blue, as above.
struct EColor3f {
    float r;
    float g;
    float b;
};

} // namespace qutil
