// The frozen gamma tables against the powers that they stand for.
#include "kernels/maths/GammaTables.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

namespace {

using namespace zqx::img::kernels;

/// Literal encoding of a value that is not NaN.
int literalCode(float v) {
    const float limited = v > 1.0F ? 1.0F : v < 0.0F ? 0.0F : v;
    return static_cast<int>(255.0F * std::pow(limited, std::bit_cast<float>(0x3EE8BA2EU)));
}

TEST(GammaTables, DecodingIsThePowerRoundedToSingle) {
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(GAMMA_DECODE[static_cast<std::size_t>(i)], static_cast<float>(std::pow(i / 255.0, 2.2))) << i;
    }
}

TEST(GammaTables, DecodingHasItsKnownValues) {
    EXPECT_EQ(GAMMA_DECODE[0], 0.0F);
    EXPECT_EQ(GAMMA_DECODE[255], 1.0F);
    EXPECT_NEAR(GAMMA_DECODE[1], 5.077e-6, 5e-10);
    EXPECT_NEAR(GAMMA_DECODE[128], 0.21952, 5e-6);
}

TEST(GammaTables, EveryThresholdIsTheSmallestFloatOfItsCode) {
    for (std::uint32_t code = 1; code < 256; ++code) {
        std::uint32_t low = 0; // bits of positive floats order like the floats
        std::uint32_t high = std::bit_cast<std::uint32_t>(1.0F);
        while (low < high) {
            const std::uint32_t middle = low + (high - low) / 2;
            if (literalCode(std::bit_cast<float>(middle)) >= static_cast<int>(code)) {
                high = middle;
            } else {
                low = middle + 1;
            }
        }
        EXPECT_EQ(std::bit_cast<std::uint32_t>(GAMMA_ENCODE_THRESHOLD[code]), low) << "code " << code;
    }
}

TEST(GammaTables, EncodingLimitsWhatIsOutsideTheUnitInterval) {
    constexpr float INF = std::numeric_limits<float>::infinity();
    EXPECT_EQ(encodeGamma(-0.0F), 0);
    EXPECT_EQ(encodeGamma(-1.0F), 0);
    EXPECT_EQ(encodeGamma(-INF), 0);
    EXPECT_EQ(encodeGamma(1.0F), 255);
    EXPECT_EQ(encodeGamma(1.5F), 255);
    EXPECT_EQ(encodeGamma(INF), 255);
    EXPECT_EQ(encodeGamma(std::numeric_limits<float>::max()), 255);
    EXPECT_EQ(encodeGamma(std::numeric_limits<float>::quiet_NaN()), 0);
    EXPECT_EQ(encodeGamma(-std::numeric_limits<float>::quiet_NaN()), 0);
    EXPECT_EQ(encodeUnit(-1.0F), 0);
    EXPECT_EQ(encodeUnit(-INF), 0);
    EXPECT_EQ(encodeUnit(1.5F), 255);
    EXPECT_EQ(encodeUnit(INF), 255);
    EXPECT_EQ(encodeUnit(std::numeric_limits<float>::quiet_NaN()), 0);
}

TEST(GammaTables, UnitBytesComeBackAsThemselves) {
    for (std::size_t i = 0; i < 256; ++i) {
        EXPECT_EQ(encodeUnit(UNIT_DECODE[i]), i);
    }
}

/// Counts the floats whose bits lie in [first, last] that are encoded differently from the literal rule.
std::int64_t countMismatches(std::uint32_t first, std::uint32_t last) {
    std::int64_t mismatches = 0;
#pragma omp parallel for schedule(static) reduction(+ : mismatches)
    for (std::int64_t bits = first; bits <= std::int64_t{last}; ++bits) {
        const float v = std::bit_cast<float>(static_cast<std::uint32_t>(bits));
        mismatches += encodeGamma(v) == literalCode(v) ? 0 : 1;
    }
    return mismatches;
}

TEST(GammaTables, ExhaustiveEncodingOfAllFloatsFromZeroToOne) {
    EXPECT_EQ(countMismatches(0, std::bit_cast<std::uint32_t>(1.0F)), 0);
}

TEST(GammaTables, ExhaustiveEncodingOfNegativesInfinitiesAndNaN) {
    std::int64_t wrong = 0;
    const auto infinity = std::int64_t{std::bit_cast<std::uint32_t>(std::numeric_limits<float>::infinity())};
#pragma omp parallel for schedule(static) reduction(+ : wrong)
    for (std::int64_t bits = std::int64_t{std::bit_cast<std::uint32_t>(1.0F)}; bits <= 0xFFFFFFFFLL; ++bits) {
        const bool aboveOne = bits <= infinity; // then positive NaNs, then everything with a sign
        const float v = std::bit_cast<float>(static_cast<std::uint32_t>(bits));
        wrong += encodeGamma(v) == (aboveOne ? 255 : 0) ? 0 : 1;
    }
    EXPECT_EQ(wrong, 0);
}

} // namespace
