// Inversion in linear light, one channel at a time.
#pragma once

#include "oracle/Pixels.h"

namespace oracle {

/// Mask bits: 1 red or grey, 2 green, 4 blue, 8 alpha.
inline void invert(const Surface& s, unsigned mask) {
    if (!isKnown(s.format)) {
        return;
    }
    for (std::size_t y = 0; y < s.height; ++y) {
        for (std::size_t x = 0; x < s.width; ++x) {
            for (int channel = 0; channel < facts(s.format).channels; ++channel) {
                if ((mask & (1U << channel)) != 0) {
                    writeChannel(s, x, y, channel, 1.0F - linearChannel(s, x, y, channel));
                }
            }
        }
    }
}

} // namespace oracle
