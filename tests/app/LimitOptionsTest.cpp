// Amounts on the command line, and what the options about reading make of them.
#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <CLI/CLI.hpp>

#include "options/ReadingOptions.h"
#include "zqx/pictures/Reader.h"
#include "zqx/pictures/codecs/Limits.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/isolation/IsolatedDecoder.h"
#include "zqx/text/Amounts.h"

namespace zqx::app {

using namespace pictures;

namespace {

ReadOptions parse(std::vector<std::string> arguments) {
    CLI::App command;
    ReadOptions options;
    addReadingOptions(command, options);
    std::ranges::reverse(arguments); // as CLI11 wants them
    command.parse(arguments);
    return options;
}

std::string getRefusal(std::uint64_t width, std::uint64_t height, const Limits& limits) {
    try {
        checkPictureSize("a.png", width, height, limits);
    } catch (const Error& error) {
        return error.what();
    }
    return "";
}

} // namespace

TEST(LimitsTest, WhatIsAsLargeAsAllowedIsRead) {
    EXPECT_EQ(getRefusal(10, 20, {.width = 10, .height = 20, .pixels = 200}), "");
}

TEST(LimitsTest, EachRefusalNamesItsLimitAndItsOption) {
    EXPECT_EQ(getRefusal(11, 20, {.width = 10, .height = 20, .pixels = 1000}),
              "a.png: is 11 pixels wide, more than the 10 allowed; --max-width raises this limit");
    EXPECT_EQ(getRefusal(10, 21, {.width = 10, .height = 20, .pixels = 1000}),
              "a.png: is 21 pixels high, more than the 20 allowed; --max-height raises this limit");
    EXPECT_EQ(getRefusal(10, 20, {.width = 10, .height = 20, .pixels = 199}),
              "a.png: has 200 pixels, more than the 199 allowed; --max-pixels raises this limit");
}

TEST(LimitsTest, PixelsAreCountedBeyond32Bits) {
    EXPECT_EQ(getRefusal(65536, 65536, {.width = 100000, .height = 100000, .pixels = 4294967295U}),
              "a.png: has 4294967296 pixels, more than the 4294967295 allowed; --max-pixels raises this limit");
}

TEST(ReadingOptionsTest, NothingIsDecidedAboutIsolationByDefault) {
    EXPECT_FALSE(parse({}).isolate.has_value());
    EXPECT_EQ(parse({"--no-isolate"}).isolate, false);
}

TEST(ReadingOptionsTest, LimitsAreTaken) {
    const ReadOptions options =
        parse({"--max-width", "70k", "--max-height", "7", "--max-pixels", "1M", "--max-bytes", "1M"});
    EXPECT_EQ(options.limits.width, 70'000U);
    EXPECT_EQ(options.limits.height, 7U);
    EXPECT_EQ(options.limits.pixels, 1'000'000U);
    EXPECT_EQ(options.limits.bytes, 1U << 20U);
}

TEST(ReadingOptionsTest, ThatAreNoneAreRefused) {
    for (const char* option : {"--max-width", "--max-height", "--max-pixels", "--max-bytes", "--decode-memory"}) {
        EXPECT_THROW(parse({option, "0"}), CLI::ValidationError) << option;
        EXPECT_THROW(parse({option, "-5"}), CLI::ParseError) << option;
        EXPECT_THROW(parse({option, "much"}), CLI::ValidationError) << option;
    }
    for (const char* time : {"0", "-1", "inf", "-inf", "nan", "1e400", "", "1s"}) {
        EXPECT_THROW(parse({std::string("--decode-time=") + time}), CLI::ParseError) << time;
    }
}

#if defined(__unix__) || defined(__APPLE__)

TEST(ReadingOptionsTest, LimitsOfTheOtherProcessTurnItOn) {
    EXPECT_EQ(parse({"--isolate"}).isolate, true);
    EXPECT_TRUE(parse({"--isolate"}).requireConfinement);
    EXPECT_EQ(parse({"--weak-isolation"}).isolate, true);
    EXPECT_FALSE(parse({"--weak-isolation"}).requireConfinement);
    EXPECT_FALSE(parse({"--weak-isolation", "--isolate"}).requireConfinement);
    EXPECT_FALSE(parse({"--isolate", "--weak-isolation"}).requireConfinement);
    const ReadOptions memory = parse({"--decode-memory", "1G"});
    EXPECT_EQ(memory.isolate, true);
    EXPECT_EQ(memory.decodeMemory, 1U << 30U);
    const ReadOptions time = parse({"--decode-time", "0.5"});
    EXPECT_EQ(time.isolate, true);
    EXPECT_EQ(time.decodeSeconds, 0.5);
}

TEST(ReadingOptionsTest, OneCannotWantBoth) {
    EXPECT_THROW(parse({"--isolate", "--no-isolate"}), CLI::ExcludesError);
    EXPECT_THROW(parse({"--weak-isolation", "--no-isolate"}), CLI::ExcludesError);
    EXPECT_THROW(parse({"--decode-time", "5", "--no-isolate"}), CLI::ExcludesError);
}

TEST(ReadingOptionsTest, CommandsDecideWhereUsersDoNot) {
    ReadOptions options;
    options.isolateByDefault();
    EXPECT_EQ(options.isolate, true);
    EXPECT_FALSE(options.requireConfinement);
    options.isolate = false;
    options.isolateByDefault();
    EXPECT_EQ(options.isolate, false);
}

#endif

} // namespace zqx::app
