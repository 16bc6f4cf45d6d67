// Straight and premultiplied alpha, one pixel at a time. The two directions are not inverse for encoded bytes:
// dividing takes the bytes as stored, multiplying decodes them.
#pragma once

#include "oracle/Pixels.h"

namespace oracle {

inline bool hasAlpha(unsigned format) {
    return isKnown(format) && facts(format).channels == 4;
}

inline void toStraight(const Surface& s) {
    if (!hasAlpha(s.format)) {
        return;
    }
    for (std::size_t y = 0; y < s.height; ++y) {
        for (std::size_t x = 0; x < s.width; ++x) {
            const float alpha = storedChannel(s, x, y, 3);
            if (!(alpha > 0.0001F)) {
                continue;
            }
            for (int channel = 0; channel < 3; ++channel) {
                const float quotient = storedChannel(s, x, y, channel) / alpha;
                const int offset = channelOffset(s.format, channel);
                if (facts(s.format).isFloat) {
                    storeFloat(s.at(x, y) + 4 * offset, quotient);
                } else {
                    s.at(x, y)[offset] = encodeLinear(quotient);
                }
            }
        }
    }
}

inline void toPremultiplied(const Surface& s) {
    if (!hasAlpha(s.format)) {
        return;
    }
    for (std::size_t y = 0; y < s.height; ++y) {
        for (std::size_t x = 0; x < s.width; ++x) {
            const float alpha = storedChannel(s, x, y, 3);
            for (int channel = 0; channel < 3; ++channel) {
                writeChannel(s, x, y, channel, linearChannel(s, x, y, channel) * alpha);
            }
        }
    }
}

} // namespace oracle
