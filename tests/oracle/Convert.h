// Conversion between pixel formats, one pixel at a time.
#pragma once

#include "oracle/Pixels.h"

namespace oracle {

/// The decoding power of a value that is no code, rounded once from double precision. Powers of mathematics libraries
/// in single precision lie within one unit in the last place of it.
inline float decodeValue(float stored) {
    return static_cast<float>(std::pow(static_cast<double>(stored), static_cast<double>(2.2F)));
}

/// The grey of a colour pixel: luma of linear light, or the decoded weighted sum of encoded values.
inline float getGrey(const Surface& source, std::size_t x, std::size_t y) {
    if (!facts(source.format).isEncoded) {
        return luma(readLinear(source, x, y));
    }
    const Values stored = readStored(source, x, y);
    return decodeValue(0.2989F * stored.r + 0.587F * stored.g + 0.114F * stored.b);
}

inline void convert(const Surface& source, const Surface& target) {
    if (!isKnown(source.format) || !isKnown(target.format)) {
        return;
    }
    const bool toGrey = facts(source.format).channels > 1 && facts(target.format).channels == 1;
    for (std::size_t y = 0; y < source.height; ++y) {
        for (std::size_t x = 0; x < source.width; ++x) {
            Values values = readLinear(source, x, y);
            if (toGrey) {
                values.r = getGrey(source, x, y);
            }
            writeLinear(target, x, y, values);
        }
    }
}

/// The float format with the same channels.
inline unsigned linearFloatFormat(unsigned format) {
    switch (facts(format).channels) {
    case 1: return 2;
    case 3: return 5;
    default: return 9;
    }
}

} // namespace oracle
