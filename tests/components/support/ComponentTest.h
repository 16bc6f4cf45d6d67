// The fixture of all component tests: what the module logs and asserts is collected, and the process's handlers are put
// back at the end.
#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <qutil/Assert.h>
#include <qutil/Log.h>
#include <qutil/StrError.h>
#include <tov/Result.h>

namespace test {

/// The text of the record that ends a failing method.
inline std::string endText(tov::Result result) {
    return std::string("End TOV-Function result: ") + qutil::tovStrError(result);
}

class ComponentTest : public testing::Test {
protected:
    using Texts = std::vector<std::string>;

    ComponentTest()
        : mPreviousSink(qutil::Log::setSink([this](const qutil::LogRecord& record) {
              const std::scoped_lock lock(mMutex);
              mRecords.push_back(record);
          })),
          mPreviousHandler(qutil::setAssertHandler([this](const char* expression, const char*, int) {
              const std::scoped_lock lock(mMutex);
              mAssertions.emplace_back(expression);
              return mGoesOn;
          })),
          mPreviousLevel(qutil::Log::reportingLevel()) {
        qutil::Log::setReportingLevel(2);
    }
    ~ComponentTest() override {
        qutil::Log::setReportingLevel(mPreviousLevel);
        qutil::setAssertHandler(std::move(mPreviousHandler));
        qutil::Log::setSink(std::move(mPreviousSink));
    }

    const std::vector<qutil::LogRecord>& records() const { return mRecords; }
    void clearLog() { mRecords.clear(); }

    Texts logTexts() const {
        Texts texts;
        for (const qutil::LogRecord& record : mRecords) {
            texts.push_back(record.text);
        }
        return texts;
    }

    /// Texts of the assertions that were raised.
    const Texts& assertions() const { return mAssertions; }
    /// What the assertion handler answers from here on; it declines unless told.
    void answerAssertions(bool goOn) { mGoesOn = goOn; }

private:
    std::mutex mMutex;
    std::vector<qutil::LogRecord> mRecords;
    Texts mAssertions;
    bool mGoesOn = false;
    qutil::Log::Sink mPreviousSink;
    qutil::AssertHandler mPreviousHandler;
    int mPreviousLevel;
};

} // namespace test
