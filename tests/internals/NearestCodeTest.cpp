// Encoding by thresholds: bytes by rounding, and curves that are no gamma curve.
#include "kernels/samples/NearestCode.h"

#include <limits>

#include <gtest/gtest.h>

#include "internals/support/Floats.h"
#include "kernels/maths/GammaTables.h"
#include "oracle/Nearest.h"

namespace {

using namespace zqx::img::kernels;

bool isRight(float v) {
    const NearestCode& nearest = nearestCode();
    EXPECT_EQ(oracle::nearestByte(v), nearest(v)) << std::hexfloat << v;
    return oracle::nearestByte(v) == nearest(v);
}

TEST(NearestCode, EveryDecodedByteIsNearestToItself) {
    for (std::size_t code = 0; code < 256; ++code) {
        EXPECT_EQ(code, nearestCode()(GAMMA_DECODE[code]));
    }
}

TEST(NearestCode, FloatsAroundEveryThresholdGetTheNearestByte) {
    for (int code = 1; code < 256; ++code) {
        ASSERT_TRUE(test::forNeighbours(static_cast<float>(std::pow((code - 0.5) / 255.0, 2.2)), isRight));
    }
}

TEST(NearestCode, FloatsOfAllKindsGetTheNearestByte) {
    test::forFloatsOfAllKinds(isRight);
}

TEST(NearestCode, WhatIsBeyondTheRangeIsLimitedAndNotANumberIsBlack) {
    using Limits = std::numeric_limits<float>;
    for (const float black :
         {0.0F, -0.0F, -1.0F, Limits::denorm_min(), -Limits::infinity(), Limits::quiet_NaN(), -Limits::quiet_NaN()}) {
        EXPECT_EQ(0, nearestCode()(black)) << black;
    }
    for (const float white : {1.0F, 1.5F, Limits::max(), Limits::infinity(), std::nextafter(1.0F, 0.0F)}) {
        EXPECT_EQ(255, nearestCode()(white)) << white;
    }
}

TEST(ThresholdEncoder, TakesAnyThresholdsThatBucketsHoldApart) {
    constexpr ThresholdEncoder<4> ENCODER([](std::size_t code) { return 0.125F * static_cast<float>(code * code); });
    static_assert(ENCODER(0.5F) == 2); // the compiler can do it
    EXPECT_EQ(0, ENCODER(std::nextafter(0.125F, 0.0F)));
    EXPECT_EQ(1, ENCODER(0.125F));
    EXPECT_EQ(1, ENCODER(std::nextafter(0.5F, 0.0F)));
    EXPECT_EQ(2, ENCODER(std::nextafter(1.0F, 0.0F)));
    EXPECT_EQ(3, ENCODER(1.0F));
    EXPECT_EQ(3, ENCODER(2.0F));
}

} // namespace
