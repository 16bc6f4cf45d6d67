// Collects log records for the length of a test.
#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include <qutil/Log.h>

class LogCapture {
public:
    LogCapture()
        : mPrevious(qutil::Log::setSink([this](const qutil::LogRecord& record) {
              const std::scoped_lock lock(mMutex);
              mRecords.push_back(record);
          })) {}
    ~LogCapture() { qutil::Log::setSink(std::move(mPrevious)); }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    /// To be asked when no other thread logs.
    const std::vector<qutil::LogRecord>& records() const { return mRecords; }

    std::vector<std::string> texts() const {
        std::vector<std::string> texts;
        for (const qutil::LogRecord& record : mRecords) {
            texts.push_back(record.text);
        }
        return texts;
    }

private:
    std::mutex mMutex;
    std::vector<qutil::LogRecord> mRecords;
    qutil::Log::Sink mPrevious;
};
