// File names to wide characters.
#include <qutil/XString.h>

#include <gtest/gtest.h>

namespace {

std::wstring wide(std::string_view utf8) {
    return qutil::XString(utf8).toWide();
}

TEST(XString, WidensLatinGreekAndChinese) {
    EXPECT_EQ(wide("a\xC3\xA4\xCF\x80\xE5\x9B\xBE"), L"a\u00E4\u03C0\u56FE");
}

TEST(XString, WidensBeyondTheBasicPlane) {
    EXPECT_EQ(wide("\xF0\x9F\x93\xB7"), L"\U0001F4F7"); // a surrogate pair where wchar_t has 16 bits
}

TEST(XString, ReplacesMalformedBytes) {
    EXPECT_EQ(wide("\xFFz"), L"\uFFFDz");
    EXPECT_EQ(wide("\xC3"), L"\uFFFD");
    EXPECT_EQ(wide("\xC3z"), L"\uFFFDz");
    EXPECT_EQ(wide("\xED\xA0\x80"), L"\uFFFD"); // an encoded surrogate
    EXPECT_EQ(wide("\xE0\x80\xAF"), L"\uFFFD"); // an overlong slash
}

} // namespace
