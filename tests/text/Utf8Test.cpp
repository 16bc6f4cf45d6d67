// Well-formed UTF-8 comes through as it is; of anything else each byte shows as one.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "zqx/text/Utf8.h"

namespace zqx::text {

namespace {

std::vector<char32_t> getCodes(std::string_view text) {
    std::vector<char32_t> codes;
    while (!text.empty()) {
        codes.push_back(takeCharacter(text).code);
    }
    return codes;
}

std::string replacements(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += "\xEF\xBF\xBD";
    }
    return text;
}

} // namespace

TEST(Utf8Test, CharactersOfEachLengthAreDecoded) {
    EXPECT_EQ(getCodes("aé日📷"), (std::vector<char32_t>{U'a', 0xE9, 0x65E5, 0x1F4F7}));
}

TEST(Utf8Test, TakingACharacterGivesItsBytesAndLeavesTheRest) {
    std::string_view text = "é!";
    const Character character = takeCharacter(text);
    EXPECT_TRUE(character.valid);
    EXPECT_EQ(character.bytes, "é");
    EXPECT_EQ(text, "!");
}

TEST(Utf8Test, EveryScalarValueComesBack) {
    for (char32_t code = 0; code <= 0x10FFFF; ++code) {
        if (code >= 0xD800 && code <= 0xDFFF) {
            continue;
        }
        std::string text;
        appendUtf8(text, code);
        std::string_view rest = text;
        const Character character = takeCharacter(rest);
        ASSERT_TRUE(character.valid) << std::hex << static_cast<unsigned>(code);
        ASSERT_EQ(character.code, code);
        ASSERT_TRUE(rest.empty());
    }
}

TEST(Utf8Test, EmptyTextIsWellFormed) {
    EXPECT_TRUE(isUtf8(""));
    EXPECT_EQ(repairedUtf8(""), "");
}

TEST(Utf8Test, ZeroBytesAreCharacters) {
    const std::string_view text("a\0b", 3);
    EXPECT_TRUE(isUtf8(text));
    EXPECT_EQ(repairedUtf8(text), text);
}

struct Malformed {
    const char* name;
    std::string_view bytes;
};

class MalformedUtf8Test : public ::testing::TestWithParam<Malformed> {};

TEST_P(MalformedUtf8Test, IsFoundAndReplacedByteByByte) {
    const std::string_view bytes = GetParam().bytes;
    EXPECT_FALSE(isUtf8(bytes));
    EXPECT_EQ(repairedUtf8(bytes), replacements(bytes.size()));
}

TEST_P(MalformedUtf8Test, SparesItsNeighbours) {
    const std::string bytes(GetParam().bytes);
    EXPECT_EQ(repairedUtf8("é" + bytes + "日!"), "é" + replacements(bytes.size()) + "日!");
}

INSTANTIATE_TEST_SUITE_P(
    EachKind, MalformedUtf8Test,
    ::testing::Values(
        Malformed{"StrayContinuation", "\x80"}, Malformed{"LastContinuation", "\xBF"},
        Malformed{"NoFirstByteFE", "\xFE"}, Malformed{"NoFirstByteFF", "\xFF"},
        Malformed{"FiveByteForm", "\xF8\x88\x80\x80\x80"}, Malformed{"SixByteForm", "\xFC\x84\x80\x80\x80\x80"},
        Malformed{"OverlongZero", "\xC0\x80"}, Malformed{"OverlongSlash", "\xC0\xAF"},
        Malformed{"OverlongDelete", "\xC1\xBF"}, Malformed{"OverlongInThree", "\xE0\x80\xAF"},
        Malformed{"HighestOverlongInThree", "\xE0\x9F\xBF"}, Malformed{"OverlongInFour", "\xF0\x80\x80\xAF"},
        Malformed{"HighestOverlongInFour", "\xF0\x8F\xBF\xBF"}, Malformed{"FirstSurrogate", "\xED\xA0\x80"},
        Malformed{"LastSurrogate", "\xED\xBF\xBF"}, Malformed{"SurrogatePair", "\xED\xA0\xBD\xED\xB3\xB7"},
        Malformed{"BeyondUnicode", "\xF4\x90\x80\x80"}, Malformed{"FarBeyond", "\xF5\x80\x80\x80"},
        Malformed{"CutInTwo", "\xC3"}, Malformed{"CutInThree", "\xE6\x97"}, Malformed{"CutInFour", "\xF0\x9F\x93"}),
    [](const auto& test) { return std::string(test.param.name); });

TEST(Utf8Test, CutCharacterDoesNotSwallowTheNext) {
    EXPECT_EQ(repairedUtf8("\xE6\x97x"), replacements(2) + "x");
    EXPECT_EQ(repairedUtf8("\xF0\x9F\xC3\xA9"), replacements(2) + "é");
}

TEST(Utf8Test, BordersOfTheRangesAreWellFormed) {
    for (const std::string_view text : {"\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
                                        "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_TRUE(isUtf8(text));
    }
}

TEST(Utf8Test, PrefixEndsWithAWholeCharacter) {
    EXPECT_EQ(prefix("abc", 2), "ab");
    EXPECT_EQ(prefix("abc", 3), "abc");
    EXPECT_EQ(prefix("abc", 9), "abc");
    EXPECT_EQ(prefix("aé", 2), "a");
    EXPECT_EQ(prefix("aé", 3), "aé");
    EXPECT_EQ(prefix("éé", 3), "é");
    EXPECT_EQ(prefix("日", 2), "");
    EXPECT_EQ(prefix("x📷y", 4), "x");
    EXPECT_EQ(prefix("x📷y", 5), "x📷");
    EXPECT_EQ(prefix("é", 0), "");
}

TEST(Utf8Test, PrefixOfStrayBytesIsAsLongAsItMayBe) {
    EXPECT_EQ(prefix("\x80\x80\x80\x80\x80\x80", 5), "\x80\x80\x80\x80\x80");
    EXPECT_EQ(prefix("\xE6\x97zz", 3), "\xE6\x97z");
}

TEST(Utf8Test, CharactersAreCounted) {
    EXPECT_EQ(countCharacters(""), 0U);
    EXPECT_EQ(countCharacters("aé日📷"), 4U);
    EXPECT_EQ(countCharacters("\xFF\x80"), 2U);
}

} // namespace zqx::text
