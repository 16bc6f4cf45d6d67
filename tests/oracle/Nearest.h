// Rounding to the nearest code, and linear light in double precision, written as plainly as possible.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "oracle/Pixels.h"

namespace oracle {

/// The encoded byte nearest to a linear value: the largest whose lower end, a float, the value reaches.
inline unsigned char nearestByte(float v) {
    static const std::vector<float> LOWER_ENDS = [] {
        std::vector<float> ends;
        for (int code = 1; code < 256; ++code) {
            ends.push_back(static_cast<float>(std::pow((static_cast<long double>(code) - 0.5L) / 255.0L, 2.2L)));
        }
        return ends;
    }();
    return static_cast<unsigned char>(
        std::count_if(LOWER_ENDS.begin(), LOWER_ENDS.end(), [v](float end) { return v >= end; }));
}

/// Limit, curve, nearest code of 16 bits.
inline unsigned nearestWord(float v) {
    const long double limited = v > 0.0F ? std::min(1.0L, static_cast<long double>(v)) : 0.0L; // NaN is not greater
    return static_cast<unsigned>(std::floor(65535.0L * std::pow(limited, 1.0L / 2.2L) + 0.5L));
}

/// The same without the curve.
inline unsigned nearestLinearWord(float v) {
    const long double limited = v > 0.0F ? std::min(1.0L, static_cast<long double>(v)) : 0.0L;
    return static_cast<unsigned>(std::floor(65535.0L * limited + 0.5L));
}

} // namespace oracle
