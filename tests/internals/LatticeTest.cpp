// The colours of 3D tables for stored pictures, and doubles as floats.
#include "kernels/grading/Lattice.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "kernels/samples/Doubles.h"
#include "unit/support/Compare.h"
#include "unit/support/GuardedImage.h"

namespace {

using namespace zqx::img::kernels;

TEST(Lattice, RedVariesFastestInLinearLight) {
    for (const std::size_t size : {2U, 3U, 17U, 33U}) {
        std::vector<float> table(3 * size * size * size);
        fillEncodedLattice(size, table);
        const auto light = [=](std::size_t i) {
            return static_cast<float>(
                std::pow(static_cast<long double>(static_cast<double>(i) / static_cast<double>(size - 1)), 2.2L));
        };
        for (std::size_t i = 0; i < size * size * size; ++i) {
            ASSERT_EQ(light(i % size), table[3 * i]) << i;
            ASSERT_EQ(light(i / size % size), table[3 * i + 1]) << i;
            ASSERT_EQ(light(i / size / size), table[3 * i + 2]) << i;
        }
    }
}

TEST(Lattice, EncodingIsThePowerRoundedToTheNearestFloat) {
    std::vector<float> light;
    for (int i = -100; i <= 30000; ++i) {
        light.push_back(static_cast<float>(i) / 29000.0F);
    }
    std::vector<float> stored = light;
    encodeInPlace(stored);
    for (std::size_t i = 0; i < light.size(); ++i) {
        const long double limited = std::clamp(static_cast<long double>(light[i]), 0.0L, 1.0L);
        ASSERT_EQ(static_cast<float>(std::pow(limited, static_cast<long double>(1.0 / 2.2))), stored[i]) << light[i];
    }
}

TEST(Lattice, EncodingLimitsWhatIsBeyondAndKeepsWhatIsNoNumber) {
    using Limits = std::numeric_limits<float>;
    std::vector<float> values = {-Limits::infinity(), -1.0F, -0.0F, 1.5F, Limits::infinity(), Limits::quiet_NaN()};
    encodeInPlace(values);
    EXPECT_EQ((std::vector<float>{0.0F, 0.0F, 0.0F, 1.0F, 1.0F}), std::vector<float>(values.begin(), values.end() - 1));
    EXPECT_TRUE(std::isnan(values.back()));
}

TEST(Doubles, BecomeTheNearestFloats) {
    constexpr std::size_t WIDTH = 5;
    constexpr std::size_t ROW = 2 * WIDTH;
    const double values[ROW] = {0.1,        -0.0,
                                1e300,      -1e300,
                                1e-46,      std::numeric_limits<double>::quiet_NaN(),
                                1.0 + 1e-9, 1e-40,
                                3.0,        -std::numeric_limits<double>::infinity()};
    test::GuardedImage image(WIDTH, 2, zqx::img::Image::GRAY32F, {4, 12});
    narrowDoubles({values, WIDTH, 2, 1, WIDTH * sizeof(double)}, image.image());
    EXPECT_TRUE(image.guardsIntact());
    const float infinite = std::numeric_limits<float>::infinity();
    const float expected[ROW] = {0.1F, -0.0F,  infinite, -infinite, 0.0F, std::numeric_limits<float>::quiet_NaN(),
                                 1.0F, 1e-40F, 3.0F,     -infinite};
    for (std::size_t i = 0; i < ROW; ++i) {
        EXPECT_TRUE(test::sameFloat(expected[i], oracle::loadFloat(image.surface().at(i % WIDTH, i / WIDTH)))) << i;
    }
}

} // namespace
