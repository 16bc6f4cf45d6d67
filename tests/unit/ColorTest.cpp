// The colour value type and the decoding table.
#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>

#include <gtest/gtest.h>

#include <zqx/img/Color.h>

#include "oracle/Pixels.h"
#include "unit/support/Compare.h"

namespace {

using test::sameFloat;
using zqx::img::Color;
using zqx::img::srgb2linear;

constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

TEST(ColorTest, IsFourFloatsInOrder) {
    static_assert(std::is_trivially_copyable_v<Color>);
    static_assert(sizeof(Color) == 16);
    EXPECT_EQ(0U, offsetof(Color, r));
    EXPECT_EQ(4U, offsetof(Color, g));
    EXPECT_EQ(8U, offsetof(Color, b));
    EXPECT_EQ(12U, offsetof(Color, a));
}

TEST(ColorTest, TableDecodesTheEndsExactly) {
    EXPECT_EQ(0.0F, srgb2linear(0));
    EXPECT_EQ(1.0F, srgb2linear(255));
}

TEST(ColorTest, TableIsAPurePower) {
    EXPECT_NEAR(5.077e-6, srgb2linear(1), 1e-9);
    EXPECT_NEAR(0.21952, srgb2linear(128), 1e-5);
}

TEST(ColorTest, TableIsRoundedOnceFromDoublePrecision) {
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(static_cast<float>(std::pow(i / 255.0, 2.2)), srgb2linear(static_cast<unsigned char>(i))) << i;
    }
}

TEST(ColorTest, ComparesComponentByComponent) {
    const Color color{1, 2, 3, 4};
    EXPECT_EQ(-1, color.compare({1, 2, 4, 0}));
    EXPECT_EQ(1, color.compare({1, 1, 9, 9}));
    EXPECT_EQ(-1, color.compare({2, 0, 0, 0}));
    EXPECT_EQ(1, color.compare({1, 2, 3, 3}));
    EXPECT_EQ(-1, color.compare({1, 2, 3, 5}));
    EXPECT_EQ(0, color.compare({1, 2, 3, 4}));
}

TEST(ColorTest, ComparesWithoutTolerance) {
    EXPECT_EQ(-1, (Color{1, 1, 1, 1}.compare({1, 1, 1, std::nextafter(1.0F, 2.0F)})));
    EXPECT_EQ(0, (Color{0.0F, 0, 0, 0}.compare({-0.0F, 0, 0, 0})));
}

TEST(ColorTest, ComparesAsGreaterWithNotANumber) {
    const Color nan{1, NOT_A_NUMBER, 0, 0};
    EXPECT_EQ(1, nan.compare(nan));
    EXPECT_EQ(1, nan.compare({1, 5, 0, 0}));
    EXPECT_EQ(1, (Color{1, 5, 0, 0}.compare(nan)));
    EXPECT_EQ(-1, nan.compare({2, 5, 0, 0})) << "red decides first";
}

/// The float nearest to the exact power. A system's own powf is mostly that, and elsewhere the one beside it.
float nearestPower(float value, float exponent) {
    return static_cast<float>(std::pow(static_cast<long double>(value), static_cast<long double>(exponent)));
}

TEST(ColorTest, EncodesWithTheSinglePrecisionPower) {
    const Color encoded = Color{0.5F, 2.0F, 0.0F, 0.3F}.toSrgb();
    EXPECT_EQ(nearestPower(0.5F, 0.45454544F), encoded.r);
    EXPECT_EQ(nearestPower(2.0F, 0.45454544F), encoded.g);
    EXPECT_EQ(0.0F, encoded.b);
    EXPECT_EQ(0.3F, encoded.a);
    EXPECT_NEAR(0.72974, encoded.r, 1e-5);
}

TEST(ColorTest, DecodesWithTheSinglePrecisionPower) {
    const Color decoded = Color{0.5F, 2.0F, 1.0F, 0.3F}.toLinear();
    EXPECT_EQ(nearestPower(0.5F, 2.2F), decoded.r);
    EXPECT_EQ(nearestPower(2.0F, 2.2F), decoded.g);
    EXPECT_EQ(1.0F, decoded.b);
    EXPECT_EQ(0.3F, decoded.a) << "alpha is linear already";
    EXPECT_NEAR(0.21764, decoded.r, 1e-5);
}

TEST(ColorTest, NegativeComponentsHaveNoPower) {
    EXPECT_TRUE(std::isnan(Color{-0.5F, 0, 0, -2.0F}.toSrgb().r));
    EXPECT_TRUE(std::isnan(Color{0, 0, -0.5F, -2.0F}.toLinear().b));
    EXPECT_EQ(-2.0F, (Color{0, 0, -0.5F, -2.0F}.toLinear().a));
}

TEST(ColorTest, ManyValuesAreTheNearestToThePowers) {
    for (int i = 0; i <= 3000; ++i) {
        const float v = static_cast<float>(i) / 1000.0F;
        EXPECT_TRUE(sameFloat(nearestPower(v, 0.45454544F), (Color{0, v, 0, 1}.toSrgb().g))) << v;
        EXPECT_TRUE(sameFloat(nearestPower(v, 2.2F), (Color{0, 0, v, 1}.toLinear().b))) << v;
    }
}

TEST(ColorTest, AValueWhosePowerLiesNextToTheMiddleBetweenTwoFloatsGetsTheNearer) {
    EXPECT_EQ(0x1.f1744p+3F, (Color{3.48046875F, 0, 0, 1}.toLinear().r)); // the power is 0x1.f17440fff...p+3
}

TEST(ColorTest, InfinitiesAndZerosHaveThePowersOfTheStandard) {
    constexpr float INF = std::numeric_limits<float>::infinity();
    for (const Color& color : {Color{INF, -INF, -0.0F, 1}.toSrgb(), Color{INF, -INF, -0.0F, 1}.toLinear()}) {
        EXPECT_EQ(INF, color.r);
        EXPECT_EQ(INF, color.g);
        EXPECT_TRUE(sameFloat(0.0F, color.b));
    }
}

} // namespace
