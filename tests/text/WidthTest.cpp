// Columns of a terminal.
#include <gtest/gtest.h>

#include "zqx/text/Width.h"

namespace zqx::text {

TEST(WidthTest, LettersTakeOneColumn) {
    EXPECT_EQ(displayWidth("abc"), 3U);
    EXPECT_EQ(displayWidth("äöü"), 3U);
    EXPECT_EQ(displayWidth(""), 0U);
}

TEST(WidthTest, EastAsianScriptsAndPictogramsTakeTwo) {
    EXPECT_EQ(displayWidth("日本"), 4U);
    EXPECT_EQ(displayWidth("한글"), 4U);
    EXPECT_EQ(displayWidth("📷"), 2U);
    EXPECT_EQ(displayWidth("！"), 2U);
}

TEST(WidthTest, CombiningMarksAndJoinersTakeNone) {
    EXPECT_EQ(displayWidth("e\xCC\x81"), 1U);
    EXPECT_EQ(getColumns(0x200D), 0U);
    EXPECT_EQ(getColumns(0xFE0F), 0U);
}

TEST(WidthTest, PaddingFillsUpToColumns) {
    EXPECT_EQ(padded("ab", 4), "ab  ");
    EXPECT_EQ(padded("ab", 4, Align::RIGHT), "  ab");
    EXPECT_EQ(padded("日", 4), "日  ");
    EXPECT_EQ(padded("é", 3), "é  ");
    EXPECT_EQ(padded("7", 3, Align::RIGHT, '0'), "007");
    EXPECT_EQ(padded("long", 2), "long");
    EXPECT_EQ(padded("", 0), "");
}

TEST(WidthTest, EndOfAShortTextIsAllOfIt) {
    EXPECT_EQ(getEnd("name.jpg", 8), "name.jpg");
    EXPECT_EQ(getEnd("", 0), "");
}

TEST(WidthTest, EndOfALongTextFollowsDots) {
    EXPECT_EQ(getEnd("folder/name.jpg", 11), "...name.jpg");
    EXPECT_EQ(getEnd("日本日本日本", 9), "...本日本");
    EXPECT_EQ(getEnd("日本日本日本", 10), "...本日本"); // half of a character does not show
}

TEST(WidthTest, EndDoesNotBeginWithAMarkOverNothing) {
    EXPECT_EQ(getEnd("abcdefghe\xCC\x81wxyz1", 8), "...wxyz1");
}

TEST(WidthTest, EndFitsEveryWidth) {
    for (std::size_t columns = 0; columns < 30; ++columns) {
        EXPECT_LE(displayWidth(getEnd("photos/日本/été/📷.jpg", columns)), columns);
    }
}

TEST(WidthTest, ThereIsNoEndWithoutRoom) {
    EXPECT_EQ(getEnd("folder/name.jpg", 7), "");
}

TEST(WidthTest, WordsAreWrappedBeforeTheColumn) {
    EXPECT_EQ(wrapped("one two three", 7, 0), "one two\nthree");
    EXPECT_EQ(wrapped("one two three", 100, 0), "one two three");
    EXPECT_EQ(wrapped("one two three", 9, 2), "one two\n  three");
    EXPECT_EQ(wrapped("  one \n two ", 20, 0), "one two");
    EXPECT_EQ(wrapped("incomprehensible word", 5, 0), "incomprehensible\nword");
    EXPECT_EQ(wrapped("", 10, 4), "");
}

TEST(WidthTest, WrappingCountsColumnsNotBytes) {
    EXPECT_EQ(wrapped("ää ää", 5, 0), "ää ää");
}

} // namespace zqx::text
