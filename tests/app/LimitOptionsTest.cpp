// Amounts on the command line, and what the options about reading make of them.
#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>

#include <Error.h>
#include <IsolatedDecoder.h>
#include <LoadOptions.h>
#include <SizeOption.h>

namespace zqx::img::app {

namespace {

LoadOptions parse(std::vector<std::string> arguments) {
    CLI::App command;
    LoadOptions options;
    options.addTo(command);
    std::ranges::reverse(arguments); // as CLI11 wants them
    command.parse(arguments);
    return options;
}

std::string refusalOf(const PictureSize& size, const LoadLimits& limits) {
    try {
        checkPictureSize("a.png", size, limits);
    } catch (const Error& error) {
        return error.what();
    }
    return "";
}

} // namespace

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

TEST(LoadLimitsTest, WhatIsAsLargeAsAllowedIsRead) {
    EXPECT_EQ(refusalOf({10, 20, 24}, {.width = 10, .height = 20, .pixels = 200}), "");
}

TEST(LoadLimitsTest, EachRefusalNamesItsLimitAndItsOption) {
    EXPECT_EQ(refusalOf({11, 20, 24}, {.width = 10, .height = 20, .pixels = 1000}),
              "a.png: is 11 pixels wide, more than the 10 allowed; --max-width raises that");
    EXPECT_EQ(refusalOf({10, 21, 24}, {.width = 10, .height = 20, .pixels = 1000}),
              "a.png: is 21 pixels high, more than the 20 allowed; --max-height raises that");
    EXPECT_EQ(refusalOf({10, 20, 24}, {.width = 10, .height = 20, .pixels = 199}),
              "a.png: has 200 pixels, more than the 199 allowed; --max-pixels raises that");
}

TEST(LoadLimitsTest, PixelsAreCountedBeyond32Bits) {
    EXPECT_EQ(refusalOf({65536, 65536, 8}, {.width = 100000, .height = 100000, .pixels = 4294967295U}),
              "a.png: has 4294967296 pixels, more than the 4294967295 allowed; --max-pixels raises that");
}

TEST(LoadOptionsTest, NothingIsDecidedAboutIsolationByDefault) {
    EXPECT_FALSE(parse({}).isolate.has_value());
    EXPECT_EQ(parse({"--no-isolate"}).isolate, false);
}

TEST(LoadOptionsTest, LimitsAreTaken) {
    const LoadOptions options =
        parse({"--max-width", "70k", "--max-height", "7", "--max-pixels", "1M", "--max-bytes", "1M"});
    EXPECT_EQ(options.limits.width, 70'000U);
    EXPECT_EQ(options.limits.height, 7U);
    EXPECT_EQ(options.limits.pixels, 1'000'000U);
    EXPECT_EQ(options.limits.bytes, 1U << 20U);
}

TEST(LoadOptionsTest, ThatAreNoneAreRefused) {
    for (const char* option : {"--max-width", "--max-height", "--max-pixels", "--max-bytes", "--decode-memory"}) {
        EXPECT_THROW(parse({option, "0"}), CLI::ValidationError) << option;
        EXPECT_THROW(parse({option, "-5"}), CLI::ParseError) << option;
        EXPECT_THROW(parse({option, "much"}), CLI::ValidationError) << option;
    }
    EXPECT_THROW(parse({"--decode-time", "0"}), CLI::ValidationError);
}

#if defined(__unix__) || defined(__APPLE__)

TEST(LoadOptionsTest, LimitsOfTheOtherProcessTurnItOn) {
    EXPECT_EQ(parse({"--isolate"}).isolate, true);
    const LoadOptions memory = parse({"--decode-memory", "1G"});
    EXPECT_EQ(memory.isolate, true);
    EXPECT_EQ(memory.decodeMemory, 1U << 30U);
    const LoadOptions time = parse({"--decode-time", "0.5"});
    EXPECT_EQ(time.isolate, true);
    EXPECT_EQ(time.decodeSeconds, 0.5);
}

TEST(LoadOptionsTest, OneCannotWantBoth) {
    EXPECT_THROW(parse({"--isolate", "--no-isolate"}), CLI::ExcludesError);
    EXPECT_THROW(parse({"--decode-time", "5", "--no-isolate"}), CLI::ExcludesError);
}

TEST(LoadOptionsTest, CommandsDecideWhereUsersDoNot) {
    LoadOptions options;
    options.isolateByDefault();
    EXPECT_EQ(options.isolate, true);
    options.isolate = false;
    options.isolateByDefault();
    EXPECT_EQ(options.isolate, false);
}

#endif

} // namespace zqx::img::app
