// Which names are near enough to a word to be suggested.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "help/Suggestions.h"

namespace zqx::app {

namespace {

const std::vector<std::string> OPTIONS = {"--output", "--output-dir", "--set", "--hdr", "--recursive"};

} // namespace

TEST(SuggestionsTest, MisspeltNameGetsTheNearestOne) {
    EXPECT_EQ(nearestName("--outptu", OPTIONS), "--output");
    EXPECT_EQ(nearestName("--OUTPUT", OPTIONS), "--output");
    EXPECT_EQ(nearestName("--recursvie", OPTIONS), "--recursive");
}

TEST(SuggestionsTest, BeginningOfANameIsEnough) {
    EXPECT_EQ(nearestName("--out", OPTIONS), "--output");
    EXPECT_EQ(nearestName("--rec", OPTIONS), "--recursive");
    EXPECT_EQ(nearestName("--output-directory", OPTIONS), "--output-dir");
}

TEST(SuggestionsTest, WhatIsFarFromAllNamesGetsNone) {
    EXPECT_EQ(nearestName("--wibble", OPTIONS), std::nullopt);
    EXPECT_EQ(nearestName("--clor", OPTIONS), std::nullopt); // two of four letters differ from --hdr
    EXPECT_EQ(nearestName("-x", OPTIONS), std::nullopt);
    EXPECT_EQ(nearestName("", OPTIONS), std::nullopt);
    EXPECT_EQ(nearestName("--output", {}), std::nullopt);
}

TEST(SuggestionsTest, QuestionIsAskedOnlyWithAName) {
    EXPECT_EQ(didYouMean("--st", OPTIONS), "; did you mean \"--set\"?");
    EXPECT_EQ(didYouMean("--wibble", OPTIONS), "");
}

} // namespace zqx::app
