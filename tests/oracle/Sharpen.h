// Unsharp mask on luminance with a soft threshold, applied as a gain.
#pragma once

#include "oracle/Blur.h"

namespace oracle {

struct SharpenSettings {
    float radius = 1.0F;
    float strength = 0.0F;
    float threshold = 0.02F;
};

inline float softThreshold(float difference, float threshold) {
    if (difference < 0.0F) {
        const float shrunk = difference + threshold;
        return shrunk > 0.0F ? 0.0F : shrunk;
    }
    const float shrunk = difference - threshold;
    return shrunk < 0.0F ? 0.0F : shrunk;
}

inline float luminance(const Surface& s, std::size_t x, std::size_t y) {
    const Values c = readLinear(s, x, y);
    return facts(s.format).channels == 1 ? c.r : 0.7152F * c.g + 0.2126F * c.r + 0.0722F * c.b;
}

inline void sharpenFloats(const Surface& picture, const SharpenSettings& settings) {
    Picture blurred(picture.width, picture.height, 2);
    convert(picture, blurred.surface);
    blurFloats(blurred.surface, settings.radius);
    for (std::size_t y = 0; y < picture.height; ++y) {
        for (std::size_t x = 0; x < picture.width; ++x) {
            const float bright = luminance(picture, x, y);
            const float excess = softThreshold(bright - loadFloat(blurred.surface.at(x, y)), settings.threshold);
            const float gain = (settings.strength * excess + bright) / bright;
            const int colours = facts(picture.format).channels == 1 ? 1 : 3;
            for (int c = 0; c < colours; ++c) {
                storeFloat(picture.at(x, y) + 4 * c, gain * loadFloat(picture.at(x, y) + 4 * c));
            }
        }
    }
}

inline void sharpen(const Surface& source, const Surface& target, const SharpenSettings& settings) {
    Picture working(source.width, source.height, workingFormat(source.format, target.format));
    convert(source, working.surface);
    sharpenFloats(working.surface, settings);
    convert(working.surface, target);
}

} // namespace oracle
