// Numbers look the same in every locale.
#include <gtest/gtest.h>

#include <clocale>
#include <limits>

#include "zqx/text/Amounts.h"
#include "zqx/text/Numbers.h"

namespace zqx::text {

TEST(NumbersTest, ShortestReadsBackAndHasNoNeedlessDigits) {
    EXPECT_EQ(shortest(0.1F), "0.1");
    EXPECT_EQ(shortest(0.1), "0.1");
    EXPECT_EQ(shortest(5.0), "5");
    EXPECT_EQ(shortest(-180.0F), "-180");
    EXPECT_EQ(shortest(1e30), "1e+30");
}

TEST(NumbersTest, PlainDecimalsHaveNoExponent) {
    EXPECT_EQ(shortestDecimal(1e-10F), "0.0000000001");
    EXPECT_EQ(shortestDecimal(std::numeric_limits<float>::max()), "340282346638528859811704183484516925440");
    EXPECT_EQ(shortestDecimal(0.5F), "0.5");
}

TEST(NumbersTest, FixedHasSoManyDecimals) {
    EXPECT_EQ(fixed(1.5, 2), "1.50");
    EXPECT_EQ(fixed(2.75, 0), "3");
    EXPECT_EQ(fixed(0.125, 2), "0.12"); // a half goes to the even neighbour
    EXPECT_EQ(fixed(std::numeric_limits<double>::max(), 1).size(), 311U);
}

TEST(NumbersTest, SignificantDigitsAreLimited) {
    EXPECT_EQ(significant(1.0 / 85), "0.0117647");
    EXPECT_EQ(significant(3.0), "3");
    EXPECT_EQ(significant(65535.0), "65535");
    EXPECT_EQ(significant(1e-9), "1e-09");
    EXPECT_EQ(significant(1234567.0), "1.23457e+06");
    EXPECT_EQ(significant(2.345, 2), "2.3");
}

TEST(NumbersTest, CommaOfALocaleStaysAway) {
    ASSERT_NE(std::setlocale(LC_NUMERIC, ZQX_COMMA_LOCALE), nullptr);
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    EXPECT_EQ(fixed(1.5, 1), "1.5");
    EXPECT_EQ(significant(0.25), "0.25");
    EXPECT_EQ(roundedSize(1536), "1.5 KiB");
    std::setlocale(LC_NUMERIC, "C");
}

} // namespace zqx::text
