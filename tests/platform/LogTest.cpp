// The logging service: records, sinks, level.
#include <qutil/Log.h>

#include <locale>
#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include <qutil/Error.h>
#include <qutil/SehException.h>

#include "LogCapture.h"

using qutil::Log;

TEST(Log, ReportsLevelsUpToTwoUnlessToldOtherwise) {
    EXPECT_EQ(Log::reportingLevel(), 2);
    Log::setReportingLevel(0);
    EXPECT_EQ(Log::reportingLevel(), 0);
    Log::setReportingLevel(2);
}

TEST(Log, RecordCarriesEverything) {
    const LogCapture log;
    Log::get("colour", "Grade.cpp", 17, "void grade(float)", 2) << "exposure " << 3 << ' ' << 1.5;
    ASSERT_EQ(log.records().size(), 1U);
    const qutil::LogRecord record = log.records()[0];
    EXPECT_EQ(record.category, "colour");
    EXPECT_EQ(record.file, "Grade.cpp");
    EXPECT_EQ(record.line, 17);
    EXPECT_EQ(record.function, "void grade(float)");
    EXPECT_EQ(record.level, 2);
    EXPECT_EQ(record.text, "exposure 3 1.5");
}

TEST(Log, RecordsAreMadeWhateverTheLevel) {
    const LogCapture log;
    Log::setReportingLevel(0);
    Log::get("c", "f", 1, "g", 9) << "fine detail";
    Log::setReportingLevel(2);
    EXPECT_EQ(log.texts(), std::vector<std::string>{"fine detail"});
}

TEST(Log, RecordWithoutTextIsOneToo) {
    const LogCapture log;
    Log::get("c", "f", 1, "g", 2);
    EXPECT_EQ(log.texts(), std::vector<std::string>{""});
}

TEST(Log, NullTextsAreEmpty) {
    const LogCapture log;
    Log::get(nullptr, nullptr, 1, nullptr, 2) << "x";
    ASSERT_EQ(log.records().size(), 1U);
    EXPECT_EQ(log.records()[0].category, "");
    EXPECT_EQ(log.records()[0].function, "");
}

TEST(Log, ThrowingSinkIsNobodysProblem) {
    const Log::Sink previous = Log::setSink([](const qutil::LogRecord&) { throw std::runtime_error("full"); });
    EXPECT_NO_THROW(Log::get("c", "f", 1, "g", 2) << "x");
    Log::setSink(previous);
}

TEST(Log, SettingASinkReturnsThePrevious) {
    int first = 0;
    const Log::Sink original = Log::setSink([&first](const qutil::LogRecord&) { ++first; });
    const Log::Sink counting = Log::setSink([](const qutil::LogRecord&) {});
    counting({});
    EXPECT_EQ(first, 1);
    Log::setSink(original);
}

TEST(Log, SinkMayLogItself) {
    int records = 0;
    const Log::Sink previous = Log::setSink([&records](const qutil::LogRecord& record) {
        ++records;
        if (record.text == "outer") {
            Log::get("c", "f", 1, "g", 2) << "inner";
        }
    });
    Log::get("c", "f", 1, "g", 2) << "outer";
    Log::setSink(previous);
    EXPECT_EQ(records, 2);
}

TEST(Log, DefaultSinkWritesOneLineToTheErrorOutput) {
    const Log::Sink previous = Log::setSink({});
    testing::internal::CaptureStderr();
    Log::get("colour", "Grade.cpp", 17, "void grade()", 2) << "too dark";
    Log::logFatalException("colour", "Grade.cpp", 18, "gone");
    const std::string written = testing::internal::GetCapturedStderr();
    Log::setSink(previous);
    EXPECT_EQ(written, "[2] colour Grade.cpp:17 void grade(): too dark\n[0] colour Grade.cpp:18: gone\n");
}

TEST(Log, FatalExceptionsAreAtLevelZeroWithoutFunction) {
    const LogCapture log;
    const qutil::SehException fault(11, nullptr);
    Log::logFatalException("c", "File.cpp", 5, fault);
    Log::logFatalException("c", "File.cpp", 6, qutil::Error("an error"));
    Log::logFatalException("c", "File.cpp", 7, "Unhandled exception");
    Log::logFatalException("c", "File.cpp", 8, static_cast<const char*>(nullptr));
    EXPECT_EQ(log.texts(), (std::vector<std::string>{fault.what(), "an error", "Unhandled exception", ""}));
    for (const qutil::LogRecord& record : log.records()) {
        EXPECT_EQ(record.level, 0);
        EXPECT_EQ(record.function, "");
        EXPECT_EQ(record.category, "c");
        EXPECT_EQ(record.file, "File.cpp");
    }
    EXPECT_EQ(log.records()[2].line, 7);
}

TEST(Log, NumbersIgnoreTheHostsLocale) {
    struct Grouping : std::numpunct<char> {
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new Grouping));
    const LogCapture log;
    Log::get("c", "f", 1, "g", 2) << 1234567;
    std::locale::global(before);
    EXPECT_EQ(log.texts(), std::vector<std::string>{"1234567"});
}

TEST(Log, ManyThreadsLogAtOnce) {
    const LogCapture log;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < 100; ++i) {
                Log::get("c", "f", i, "g", 2) << "text";
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(log.records().size(), 400U);
}
