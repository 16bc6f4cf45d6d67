// Reproducible pixel contents: everything at once, the 256 bytes in order, and something like a photograph.
#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "oracle/Pixels.h"

namespace test {

/// SplitMix64: the same sequence everywhere, unlike the distributions of the standard library.
class Random {
public:
    explicit Random(std::uint64_t seed) : mState(seed) {}

    std::uint64_t next() {
        mState += 0x9E3779B97F4A7C15U;
        std::uint64_t z = mState;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9U;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBU;
        return z ^ (z >> 31);
    }
    unsigned char byte() { return static_cast<unsigned char>(next() >> 56); }
    std::size_t below(std::size_t count) { return static_cast<std::size_t>((next() >> 32) % count); }
    /// In [0, 1).
    float unit() { return static_cast<float>(next() >> 40) / 16777216.0F; }
    float between(float low, float high) { return low + (high - low) * unit(); }

    /// Mostly colour-like values, one in four from the corners of single precision.
    float anyFloat() { return below(4) == 0 ? special(below(SPECIAL_COUNT)) : between(-0.5F, 1.5F); }

    static constexpr std::size_t SPECIAL_COUNT = 22;
    static float special(std::size_t index) {
        const float infinity = std::numeric_limits<float>::infinity();
        const float specials[SPECIAL_COUNT] = {0.0F,
                                               -0.0F,
                                               std::numeric_limits<float>::denorm_min(),
                                               -std::numeric_limits<float>::denorm_min(),
                                               1e-40F,
                                               std::numeric_limits<float>::min(),
                                               -1.1920929e-7F,
                                               1e-6F,
                                               -1.0F,
                                               -1e30F,
                                               1.0F,
                                               0.99999994F,
                                               1.0000001F,
                                               2.5F,
                                               1e6F,
                                               std::numeric_limits<float>::max(),
                                               infinity,
                                               -infinity,
                                               std::numeric_limits<float>::quiet_NaN(),
                                               0.66F,
                                               0.33F,
                                               0.5F};
        return specials[index];
    }

private:
    std::uint64_t mState;
};

/// Sets every stored element from byteAt(x, y, element) or floatAt(x, y, element).
template <typename ByteAt, typename FloatAt>
void fillElements(const oracle::Surface& s, ByteAt byteAt, FloatAt floatAt) {
    for (std::size_t y = 0; y < s.height; ++y) {
        for (std::size_t x = 0; x < s.width; ++x) {
            for (int e = 0; e < oracle::facts(s.format).channels; ++e) {
                if (oracle::facts(s.format).isFloat) {
                    oracle::storeFloat(s.at(x, y) + 4 * e, floatAt(x, y, e));
                } else {
                    s.at(x, y)[e] = byteAt(x, y, e);
                }
            }
        }
    }
}

inline void fillRandom(const oracle::Surface& s, std::uint64_t seed) {
    Random random(seed);
    fillElements(
        s, [&](std::size_t, std::size_t, int) { return random.byte(); },
        [&](std::size_t, std::size_t, int) { return random.anyFloat(); });
}

/// Bytes run through all 256 values along a row, each channel from its own start; floats through the specials.
inline void fillSweep(const oracle::Surface& s) {
    fillElements(
        s, [](std::size_t x, std::size_t y, int e) { return static_cast<unsigned char>(x + 37 * y + 91 * e); },
        [](std::size_t x, std::size_t y, int e) {
            return Random::special((x + 5 * y + 3 * e) % Random::SPECIAL_COUNT);
        });
}

/// Smooth shading with grain, between 2 % and 100 %: no channel is black, so hue and gain are defined everywhere.
inline void fillPhoto(const oracle::Surface& s, std::uint64_t seed) {
    Random random(seed);
    const auto shade = [&](std::size_t x, std::size_t y, int e) {
        const float wave = std::sin(0.07F * static_cast<float>(x) + 0.11F * static_cast<float>(y) + 1.7F * e);
        return 0.5F + 0.4F * wave + 0.08F * random.between(-1.0F, 1.0F);
    };
    fillElements(
        s, [&](std::size_t x, std::size_t y, int e) { return static_cast<unsigned char>(255.0F * shade(x, y, e)); },
        shade);
}

} // namespace test
