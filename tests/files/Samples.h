// Pictures as plain numbers, so that what different programs hold can be laid side by side.
#pragma once

#include <cstdint>
#include <string>

#include <gtest/gtest.h>

namespace zqx::img::test {

/// What a sample is; the number is its size in bytes.
enum class Depth { BYTE = 1, WORD = 2, FLOAT = 4 };

/// Packed rows from the top, channels in the order R, G, B, A or one of grey, in the machine's byte order.
struct Samples {
    int width = 0;
    int height = 0;
    int channels = 0;
    Depth depth = Depth::BYTE;
    std::string bytes;

    std::size_t count() const { return bytes.size() / static_cast<std::size_t>(depth); }
    /// The value of a sample as stored.
    double at(std::size_t index) const;
    void set(std::size_t index, double value);
};

/// All zeros.
Samples blank(int width, int height, int channels, Depth depth);

/// What the pictures show. None has a size that fits a block or an alignment.
enum class Content {
    MOTLEY,      ///< every sample differs from its neighbours; alpha is never 0, where encoders may drop colour
    SMOOTH,      ///< slow ramps, which survive lossy compression
    TWO_LEVELS,  ///< black and white alone
    FEW_COLOURS, ///< 16 colours
    MANY_COLOURS ///< 200 colours
};

/// A test picture. Floats are multiples of 1/256 between 0 and 4, which halves hold exactly.
Samples paint(Content content, int channels, Depth depth);

/// Grey repeated in three channels; anything else as it is.
Samples inColour(const Samples& samples);

/// The rows in the opposite order.
Samples flipped(const Samples& samples);

/// Says where the first sample lies that differs by more than a part of its value; shapes must be equal.
::testing::AssertionResult isSame(const Samples& actual, const Samples& expected, double relativeTolerance = 0.0);

/// The mean difference of samples, as a part of the largest value of their depth (1 for floats).
double meanDifference(const Samples& a, const Samples& b);

} // namespace zqx::img::test
