// What a grading with contrast or hue may come out as, for pixels of any kind: the tolerance around the expected
// value, widened by what a rounding error in the input or in a setting does to it. Pixels near a pole of the colour
// space, where that is everything, are accepted as they come and counted.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "oracle/Grade.h"
#include "unit/support/Compare.h"

namespace test {

/// The interval of one channel, or no statement at all.
struct ChannelRange {
    float low;
    float high;
    bool isNan;
    bool isOpen;

    bool accepts(float actual) const {
        return isOpen || (isNan ? std::isnan(actual) : actual >= low && actual <= high);
    }
    bool acceptsByte(unsigned char actual, bool encoded) const {
        if (isOpen || isNan) {
            return isOpen || actual == 0;
        }
        const auto encode = encoded ? oracle::encodePower : oracle::encodeLinear;
        return actual >= encode(low) && actual <= encode(high);
    }
};

inline std::array<float, 3> getColours(const oracle::Values& c) {
    return {c.r, c.g, c.b};
}

/// The pixel graded as it is and with every input, the contrast and the hue moved by a few units in the last place.
inline std::vector<oracle::Values> disturbedGrades(const oracle::Prepared& p, const oracle::Values& c) {
    constexpr float RELATIVE = 5e-7F;
    constexpr float DEGREES = 5e-5F;
    constexpr float GREY = 4e-6F;
    const auto finish = [&](const oracle::Values& graded, std::vector<oracle::Values>& results) {
        if (p.intensity == 0.0F) {
            results.push_back(graded);
            return;
        }
        for (const float shift : {-GREY, 0.0F, GREY}) {
            const float grey = oracle::luma(graded) + shift;
            results.push_back(oracle::mapGradient(graded, p.table[oracle::gradientIndex(grey)], p.intensity));
        }
    };
    std::vector<oracle::Values> results;
    finish(oracle::gradeBeforeGradient(p, c), results);
    for (const float factor : {1.0F - RELATIVE, 1.0F + RELATIVE}) {
        finish(oracle::gradeBeforeGradient(p, {c.r * factor, c.g, c.b, c.a}), results);
        finish(oracle::gradeBeforeGradient(p, {c.r, c.g * factor, c.b, c.a}), results);
        finish(oracle::gradeBeforeGradient(p, {c.r, c.g, c.b * factor, c.a}), results);
        oracle::Prepared disturbed = p;
        disturbed.exponent *= p.exponent == 1.0F ? 1.0F : factor;
        disturbed.hue += p.hue == 0.0F ? 0.0F : DEGREES * (factor > 1.0F ? 1.0F : -1.0F);
        finish(oracle::gradeBeforeGradient(disturbed, c), results);
    }
    return results;
}

inline std::array<ChannelRange, 3> gradeRanges(const oracle::Prepared& p, const oracle::Values& decoded) {
    const std::array<float, 3> expected = getColours(oracle::gradePixel(p, decoded));
    const std::vector<oracle::Values> disturbed = disturbedGrades(p, decoded);
    std::array<ChannelRange, 3> ranges{};
    for (std::size_t i = 0; i < 3; ++i) {
        ChannelRange& range = ranges[i];
        range = {expected[i], expected[i], std::isnan(expected[i]), false};
        for (const oracle::Values& values : disturbed) {
            const float value = getColours(values)[i];
            range.isOpen = range.isOpen || std::isnan(value) != range.isNan;
            range.low = std::min(range.low, value);
            range.high = std::max(range.high, value);
        }
        const float slack = GRADE_TOLERANCE.absolute + GRADE_TOLERANCE.relative * std::fabs(expected[i]);
        range.low = std::isinf(range.low) ? range.low : range.low - slack;
        range.high = std::isinf(range.high) ? range.high : range.high + slack;
    }
    return ranges;
}

/// Channels seen and those among them about which nothing was said.
struct RangeTally {
    std::size_t compared = 0;
    std::size_t open = 0;
};

/// Compares the colour channels of a graded picture with their ranges.
inline testing::AssertionResult withinRanges(const oracle::Prepared& p, const oracle::Surface& source,
                                             const oracle::Surface& graded, RangeTally& tally) {
    const oracle::FormatFacts& facts = oracle::facts(graded.format);
    for (std::size_t y = 0; y < source.height; ++y) {
        for (std::size_t x = 0; x < source.width; ++x) {
            const std::array<ChannelRange, 3> ranges = gradeRanges(p, oracle::readLinear(source, x, y));
            for (int channel = 0; channel < std::min(3, facts.channels); ++channel) {
                const ChannelRange& range = ranges[channel];
                const int element = oracle::channelOffset(graded.format, channel);
                const unsigned char* address = graded.at(x, y);
                ++tally.compared;
                tally.open += range.isOpen ? 1 : 0;
                const bool accepted = facts.isFloat ? range.accepts(oracle::loadFloat(address + 4 * element))
                                                    : range.acceptsByte(address[element], facts.isEncoded);
                if (!accepted) {
                    const double actual = facts.isFloat ? oracle::loadFloat(address + 4 * element) : address[element];
                    return differs(graded, x, y, element, actual, range.isNan ? NAN : range.low)
                           << " to " << range.high;
                }
            }
        }
    }
    return testing::AssertionSuccess();
}

} // namespace test
