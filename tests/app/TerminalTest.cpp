// What the environment says of the terminal.
#include <gtest/gtest.h>

#include <cstdlib>

#include "terminal/Terminal.h"

namespace zqx::app {

namespace {

/// Locale variables as they are for the length of a test.
class TerminalTest : public ::testing::Test {
protected:
    TerminalTest() {
        for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG", "COLUMNS", "LINES"}) {
            unsetenv(name);
        }
    }
};

} // namespace

TEST_F(TerminalTest, LocaleInUtf8ShowsUnicodeHoweverItIsSpelt) {
    for (const char* locale : {"en_US.UTF-8", "de_DE.utf8", "C.UTF-8", "fr_FR.Utf-8", "ja_JP.UTF8"}) {
        setenv("LANG", locale, 1);
        EXPECT_TRUE(showsUnicode()) << locale;
    }
    for (const char* locale : {"C", "POSIX", "de_DE.ISO-8859-1", "ja_JP.eucJP", ""}) {
        setenv("LANG", locale, 1);
        EXPECT_FALSE(showsUnicode()) << locale;
    }
}

TEST_F(TerminalTest, FirstVariableThatSaysSomethingDecides) {
    setenv("LANG", "en_US.UTF-8", 1);
    setenv("LC_CTYPE", "", 1);
    EXPECT_TRUE(showsUnicode());
    setenv("LC_CTYPE", "C", 1);
    EXPECT_FALSE(showsUnicode());
    setenv("LC_ALL", "C.UTF-8", 1);
    EXPECT_TRUE(showsUnicode());
}

TEST_F(TerminalTest, EnvironmentHasPrecedenceForTheSize) {
    setenv("COLUMNS", "123", 1);
    setenv("LINES", "45", 1);
    for (const StandardStream stream : {StandardStream::OUTPUT, StandardStream::ERRORS}) {
        EXPECT_EQ(terminalSize(stream).columns, 123U);
        EXPECT_EQ(terminalSize(stream).rows, 45U);
        EXPECT_GT(terminalSize(stream).cellWidth, 0U);
        EXPECT_GT(terminalSize(stream).cellHeight, 0U);
    }
}

TEST_F(TerminalTest, SizesThatAreNoneAreIgnored) {
    for (const char* size : {"0", "-1", "80x", "", "99999999999"}) {
        setenv("COLUMNS", size, 1);
        const unsigned columns = terminalSize(StandardStream::OUTPUT).columns;
        EXPECT_GT(columns, 0U) << size;
        EXPECT_LE(columns, 10000U) << size;
    }
}

} // namespace zqx::app
