// Nothing of a text reaches a terminal as a command, and what is plain text stays as it is.
#include <gtest/gtest.h>

#include <string>

#include "zqx/text/Cleaning.h"
#include "zqx/text/Utf8.h"

namespace zqx::text {

namespace {

std::string utf8(char32_t code) {
    std::string text;
    appendUtf8(text, code);
    return text;
}

/// What no text for a terminal may have in it.
void expectHarmless(const std::string& text) {
    EXPECT_TRUE(isUtf8(text));
    for (std::string_view rest = text; !rest.empty();) {
        EXPECT_TRUE(isHarmless(takeCharacter(rest).code)) << text;
    }
}

} // namespace

TEST(CleaningTest, PlainTextStaysAsItIs) {
    const std::string text = "Ünïcode 日本 📷 \"quoted\" it's \\ 100 % ~";
    EXPECT_EQ(printable(text), text);
    EXPECT_EQ(inOneLine(text), text);
}

TEST(CleaningTest, ControlsShowAsEscapes) {
    EXPECT_EQ(printable("a\x1B[31mb"), "a\\x1B[31mb");
    EXPECT_EQ(printable("one\ntwo\r\tthree"), "one\\ntwo\\r\\tthree");
    EXPECT_EQ(printable("\a\b\x7F"), "\\x07\\x08\\x7F");
    EXPECT_EQ(printable(std::string_view("\0", 1)), "\\x00");
}

TEST(CleaningTest, ControlsAboveAsciiShowAsEscapes) {
    EXPECT_EQ(printable("a\xC2\x9B"
                        "31mb"),
              "a\\x9B31mb");
    EXPECT_EQ(printable("\xC2\x80\xC2\x9F\xC2\xA0"), "\\x80\\x9F\xC2\xA0");
}

TEST(CleaningTest, BytesThatAreNoUtf8ShowAsEscapes) {
    EXPECT_EQ(printable("caf\xE9.png"), "caf\\xE9.png");
    EXPECT_EQ(printable("\x9B[2J"), "\\x9B[2J"); // what 8-bit terminals take for an escape
    EXPECT_EQ(printable("\xC0\x9B"), "\\xC0\\x9B");
    EXPECT_EQ(printable("\xED\xA0\x80"), "\\xED\\xA0\\x80");
}

TEST(CleaningTest, DirectionsOfWritingShowAsEscapes) {
    EXPECT_EQ(printable("photo\xE2\x80\xAEgpj.exe"), "photo\\u202Egpj.exe");
    for (const char32_t code : {0x061C, 0x200E, 0x200F, 0x202A, 0x202B, 0x202C, 0x202D, 0x202E, 0x2066, 0x2067, 0x2068,
                                0x2069, 0x2028, 0x2029, 0xFEFF}) {
        EXPECT_FALSE(isHarmless(code));
        EXPECT_EQ(printable(utf8(code)).substr(0, 2), "\\u");
    }
}

TEST(CleaningTest, JoinersThatScriptsNeedStay) {
    const std::string family = "👩\xE2\x80\x8D🔬"; // joined by U+200D
    EXPECT_EQ(printable(family), family);
}

TEST(CleaningTest, AsciiTerminalsGetQuestionMarks) {
    EXPECT_EQ(printable("café 日本", Charset::ASCII), "caf? ??");
    EXPECT_EQ(printable("a\x1B\xFF", Charset::ASCII), "a\\x1B\\xFF");
}

TEST(CleaningTest, EveryByteAndEveryCharacterComesOutHarmless) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text{'a', static_cast<char>(byte), 'b'};
        expectHarmless(printable(text));
        expectHarmless(inOneLine(text));
    }
    for (char32_t code = 0; code < 0x3000; ++code) {
        expectHarmless(printable(utf8(code)));
        expectHarmless(inOneLine(utf8(code)));
    }
}

TEST(CleaningTest, WordsOfOthersBecomeOneLine) {
    EXPECT_EQ(inOneLine("a.tif: \x1B[31mred\n\x7F"), "a.tif:  [31mred  ");
    EXPECT_EQ(inOneLine("a\r\nb"), "a  b");
    EXPECT_EQ(inOneLine("\xFF"), "\xEF\xBF\xBD");
    EXPECT_EQ(inOneLine("x\xE2\x80\xAEy"), "x y");
}

TEST(CleaningTest, TrailingSpacesGo) {
    EXPECT_EQ(withoutTrailingSpaces("  a b  "), "  a b");
    EXPECT_EQ(withoutTrailingSpaces("   "), "");
    EXPECT_EQ(withoutTrailingSpaces(""), "");
}

} // namespace zqx::text
