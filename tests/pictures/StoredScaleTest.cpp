// The nearest encoded byte of a linear value.
#include "zqx/pictures/codecs/StoredScale.h"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

namespace zqx::pictures {

TEST(StoredScaleTest, DecodedBytesAreThemselves) {
    for (std::size_t code = 0; code < CODES; ++code) {
        EXPECT_EQ(nearestCode()(static_cast<float>(decodedCodes()[code])), code);
    }
}

TEST(StoredScaleTest, ValuesGoToTheNearestByte) {
    for (int i = 0; i <= 100000; ++i) {
        const float value = static_cast<float>(std::pow(i / 100000.0, 3.0)); // dense where bytes are
        const double stored = 255.0 * std::pow(static_cast<double>(value), 1.0 / 2.2);
        ASSERT_NEAR(nearestCode()(value), stored, 0.50001) << value;
    }
}

TEST(StoredScaleTest, WhatIsOutOfRangeIsLimited) {
    EXPECT_EQ(nearestCode()(-1.0F), 0);
    EXPECT_EQ(nearestCode()(std::numeric_limits<float>::denorm_min()), 0);
    EXPECT_EQ(nearestCode()(1.0F), 255);
    EXPECT_EQ(nearestCode()(std::numeric_limits<float>::infinity()), 255);
    EXPECT_EQ(nearestCode()(std::numeric_limits<float>::quiet_NaN()), 0);
}

} // namespace zqx::pictures
