// Assertions: the handler's answer, and the default.
#include <qutil/Assert.h>

#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "LogCapture.h"

namespace {

/// Puts a handler in charge for the length of a test.
class HandlerScope {
public:
    explicit HandlerScope(qutil::AssertHandler handler) : mPrevious(qutil::setAssertHandler(std::move(handler))) {}
    ~HandlerScope() { qutil::setAssertHandler(std::move(mPrevious)); }
    HandlerScope(const HandlerScope&) = delete;
    HandlerScope& operator=(const HandlerScope&) = delete;

private:
    qutil::AssertHandler mPrevious;
};

} // namespace

TEST(Assert, DefaultLogsAndDeclinesToContinue) {
    const LogCapture log;
    EXPECT_FALSE(zqxAssert("width > 0"));
    ASSERT_EQ(log.records().size(), 1U);
    EXPECT_EQ(log.records()[0].text, "width > 0");
    EXPECT_EQ(log.records()[0].category, "assert");
    EXPECT_EQ(log.records()[0].level, 1);
    EXPECT_EQ(log.records()[0].function, "TestBody");
    EXPECT_NE(log.records()[0].file.find("AssertTest"), std::string::npos);
}

TEST(Assert, DefaultHeedsTheReportingLevel) {
    const LogCapture log;
    qutil::Log::setReportingLevel(0);
    EXPECT_FALSE(zqxAssert("width > 0"));
    qutil::Log::setReportingLevel(2);
    EXPECT_TRUE(log.records().empty());
}

TEST(Assert, YieldsTheHandlersAnswer) {
    for (const bool answer : {true, false}) {
        const HandlerScope scope([answer](const char*, const char*, int) { return answer; });
        EXPECT_EQ(zqxAssert("x"), answer);
    }
}

TEST(Assert, HandlerLearnsExpressionAndPlace) {
    std::string seen;
    int seenLine = 0;
    const HandlerScope scope([&](const char* expression, const char* file, int line) {
        seen = std::string(expression) + " in " + file;
        seenLine = line;
        return true;
    });
    const int line = __LINE__ + 1;
    EXPECT_TRUE(zqxAssert("mBitmap != nullptr"));
    EXPECT_EQ(seen, std::string("mBitmap != nullptr in ") + __FILE__);
    EXPECT_EQ(seenLine, line);
}

TEST(Assert, HandlerMayThrow) {
    const HandlerScope scope([](const char*, const char*, int) -> bool { throw std::logic_error("stop"); });
    EXPECT_THROW(static_cast<void>(zqxAssert("x")), std::logic_error);
}

TEST(Assert, SettingAHandlerReturnsThePrevious) {
    const HandlerScope outer([](const char*, const char*, int) { return true; });
    const qutil::AssertHandler previous = qutil::setAssertHandler({});
    EXPECT_TRUE(previous("x", "f", 1));
    const LogCapture log;
    EXPECT_FALSE(zqxAssert("x"));
}
