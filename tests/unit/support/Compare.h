// Comparison of pixels with what the oracle expects: exact (any NaN equals any NaN) or within a tolerance.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "oracle/Pixels.h"
#include "unit/support/Formats.h"

namespace test {

inline bool sameFloat(float a, float b) {
    if (std::isnan(a) || std::isnan(b)) {
        return std::isnan(a) && std::isnan(b);
    }
    std::uint32_t bitsA;
    std::uint32_t bitsB;
    std::memcpy(&bitsA, &a, sizeof a);
    std::memcpy(&bitsB, &b, sizeof b);
    return bitsA == bitsB;
}

/// How far a float may lie from its expected value. NaN matches NaN only, infinity the same infinity.
struct Tolerance {
    float absolute;
    float relative;

    bool accepts(float actual, float expected) const {
        if (std::isnan(expected) || std::isinf(expected)) {
            return sameFloat(actual, expected);
        }
        return std::fabs(actual - expected) <= absolute + relative * std::fabs(expected);
    }
};

constexpr Tolerance GRADE_TOLERANCE = {2e-6F, 4e-6F};
constexpr Tolerance FILTER_TOLERANCE = {2e-6F, 1e-5F};

/// Bytes seen, and those among them that are one code away from the expected one. A photograph may have one such
/// byte in two thousand, where a value lies on the edge between two codes.
struct ByteTally {
    std::size_t compared = 0;
    std::size_t offByOne = 0;

    testing::AssertionResult withinBound() const {
        if (compared < 2000) {
            return testing::AssertionFailure() << "only " << compared << " bytes compared";
        }
        if (offByOne * 2000 > compared) {
            return testing::AssertionFailure() << offByOne << " of " << compared << " bytes are one code off";
        }
        return testing::AssertionSuccess();
    }
};

inline testing::AssertionResult differs(const oracle::Surface& s, std::size_t x, std::size_t y, int element,
                                        double actual, double expected) {
    return testing::AssertionFailure() << oracle::facts(s.format).name << " pixel (" << x << ", " << y << ") element "
                                       << element << " is " << testing::PrintToString(actual) << ", expected "
                                       << testing::PrintToString(expected);
}

/// Walks all elements of two surfaces of the same size and format until a comparison fails.
template <typename SameFloats, typename SameBytes>
testing::AssertionResult compareElements(const oracle::Surface& actual, const oracle::Surface& expected,
                                         SameFloats sameFloats, SameBytes sameBytes) {
    if (actual.format != expected.format || actual.width != expected.width || actual.height != expected.height) {
        return testing::AssertionFailure() << "format or size differs";
    }
    for (std::size_t y = 0; y < expected.height; ++y) {
        for (std::size_t x = 0; x < expected.width; ++x) {
            for (int e = 0; e < oracle::facts(expected.format).channels; ++e) {
                if (oracle::facts(expected.format).isFloat) {
                    const float a = oracle::loadFloat(actual.at(x, y) + 4 * e);
                    const float b = oracle::loadFloat(expected.at(x, y) + 4 * e);
                    if (!sameFloats(a, b)) {
                        return differs(expected, x, y, e, a, b);
                    }
                } else if (!sameBytes(actual.at(x, y)[e], expected.at(x, y)[e])) {
                    return differs(expected, x, y, e, actual.at(x, y)[e], expected.at(x, y)[e]);
                }
            }
        }
    }
    return testing::AssertionSuccess();
}

inline testing::AssertionResult samePixels(const oracle::Surface& actual, const oracle::Surface& expected) {
    return compareElements(actual, expected, sameFloat, [](int a, int b) { return a == b; });
}

inline testing::AssertionResult samePixels(const Image& actual, const Image& expected) {
    return samePixels(getSurface(actual), getSurface(expected));
}

/// Floats within the tolerance, bytes at most one code off; those are counted.
inline testing::AssertionResult nearPixels(const oracle::Surface& actual, const oracle::Surface& expected,
                                           Tolerance tolerance, ByteTally& tally) {
    return compareElements(
        actual, expected, [&](float a, float b) { return tolerance.accepts(a, b); },
        [&](int a, int b) {
            ++tally.compared;
            tally.offByOne += a != b ? 1 : 0;
            return a - b <= 1 && b - a <= 1;
        });
}

/// Compares alpha alone, where both have it.
inline testing::AssertionResult sameAlpha(const oracle::Surface& actual, const oracle::Surface& expected) {
    constexpr int ALPHA = 3;
    for (std::size_t y = 0; y < expected.height && oracle::facts(expected.format).channels > ALPHA; ++y) {
        for (std::size_t x = 0; x < expected.width; ++x) {
            const float a = oracle::storedChannel(actual, x, y, ALPHA);
            const float b = oracle::storedChannel(expected, x, y, ALPHA);
            if (!sameFloat(a, b)) {
                return differs(expected, x, y, ALPHA, a, b);
            }
        }
    }
    return testing::AssertionSuccess();
}

/// The bytes of a packed 8-bit image, row by row, for expectations that are written out.
inline std::vector<int> getBytes(const Image& image) {
    std::vector<int> bytes;
    const oracle::Surface s = getSurface(image);
    for (std::size_t y = 0; y < s.height; ++y) {
        for (std::size_t i = 0; i < s.width * s.pixelStride; ++i) {
            bytes.push_back(s.at(0, y)[i]);
        }
    }
    return bytes;
}

/// The floats of an image with packed pixels, row by row.
inline std::vector<float> getFloats(const Image& image) {
    std::vector<float> floats;
    const oracle::Surface s = getSurface(image);
    for (std::size_t y = 0; y < s.height; ++y) {
        for (std::size_t i = 0; i < s.width * s.pixelStride; i += 4) {
            floats.push_back(oracle::loadFloat(s.at(0, y) + i));
        }
    }
    return floats;
}

} // namespace test
