// Amounts as users read and write them.
#include <cstdint>
#include <limits>

#include <gtest/gtest.h>

#include "zqx/text/Amounts.h"

namespace zqx::text {

TEST(SizeParsingTest, LettersArePowersOf1024) {
    EXPECT_EQ(parseSize("0"), 0U);
    EXPECT_EQ(parseSize("123"), 123U);
    EXPECT_EQ(parseSize("2K"), 2048U);
    EXPECT_EQ(parseSize("3m"), 3U << 20U);
    EXPECT_EQ(parseSize("4G"), std::uint64_t{4} << 30U);
    EXPECT_EQ(parseSize("5T"), std::uint64_t{5} << 40U);
}

TEST(SizeParsingTest, LettersOfCountsArePowersOf1000) {
    EXPECT_EQ(parseCount("2k"), 2000U);
    EXPECT_EQ(parseCount("500M"), 500'000'000U);
}

TEST(SizeParsingTest, AnythingElseIsNoAmount) {
    for (const char* text : {"", "K", "-1", "+1", "1.5G", "1KB", "1 K", " 1", "1X", "0x10", "eins"}) {
        EXPECT_FALSE(parseSize(text)) << text;
    }
}

TEST(SizeParsingTest, WhatDoesNotFitIsNoAmount) {
    EXPECT_EQ(parseSize("18446744073709551615"), std::numeric_limits<std::uint64_t>::max());
    EXPECT_FALSE(parseSize("18446744073709551616"));
    EXPECT_EQ(parseSize("16777215T"), std::uint64_t{16777215} << 40U);
    EXPECT_FALSE(parseSize("16777216T"));
}

TEST(SizeParsingTest, SizesAreToldExactly) {
    EXPECT_EQ(exactSize(1000), "1000 bytes");
    EXPECT_EQ(exactSize(1024), "1 KiB");
    EXPECT_EQ(exactSize(1536), "1536 bytes");
    EXPECT_EQ(exactSize(std::uint64_t{4} << 30U), "4 GiB");
    EXPECT_EQ(exactSize(std::uint64_t{5000} << 40U), "5000 TiB");
}

TEST(SizeParsingTest, SizesAreToldInAReadableUnit) {
    EXPECT_EQ(roundedSize(0), "0 bytes");
    EXPECT_EQ(roundedSize(1023), "1023 bytes");
    EXPECT_EQ(roundedSize(1536), "1.5 KiB");
    EXPECT_EQ(roundedSize(std::uint64_t{12} << 30), "12 GiB");
    EXPECT_EQ(roundedSize(~std::uint64_t{0}), "16 EiB");
}

} // namespace zqx::text
