// The logging service.
#include <qutil/Log.h>

#include <atomic>
#include <cstdio>
#include <locale>
#include <utility>

#include <qutil/Error.h>
#include <qutil/SehException.h>

#include "Callback.h"

namespace qutil {

namespace {

std::atomic<int> sReportingLevel = 2;

/// Never destroyed: destructors of static objects may log, too.
Callback<Log::Sink>& hostSink() {
    static Callback<Log::Sink>& instance = *new Callback<Log::Sink>;
    return instance;
}

void writeLine(const LogRecord& record) {
    std::ostringstream line;
    line << '[' << record.level << "] " << record.category << ' ' << record.file << ':' << record.line;
    if (!record.function.empty()) {
        line << ' ' << record.function;
    }
    line << ": " << record.text << '\n';
    // In one call, so that lines of several threads do not mix.
    std::fputs(line.str().c_str(), stderr);
}

std::string getText(const char* text) {
    return text != nullptr ? text : "";
}

} // namespace

LogStream::LogStream(LogRecord record) : mRecord(std::move(record)) {
    // A host's locale must not put thousands separators into codes.
    mText.imbue(std::locale::classic());
}

LogStream::~LogStream() {
    try {
        mRecord.text = mText.str();
        const Log::Sink current = hostSink().current();
        if (current) {
            current(mRecord);
        } else {
            writeLine(mRecord);
        }
    } catch (...) {
        // Logging reports failures and must not become one.
    }
}

int Log::reportingLevel() {
    return sReportingLevel;
}

void Log::setReportingLevel(int level) {
    sReportingLevel = level;
}

Log::Sink Log::setSink(Sink sink) {
    return hostSink().exchange(std::move(sink));
}

LogStream Log::get(const char* category, const char* file, int line, const char* function, int level) {
    return LogStream({getText(category), getText(file), line, getText(function), level, {}});
}

void Log::logFatalException(const char* category, const char* file, int line, const SehException& exception) {
    logFatalException(category, file, line, exception.what());
}

void Log::logFatalException(const char* category, const char* file, int line, const Error& error) {
    logFatalException(category, file, line, error.what());
}

void Log::logFatalException(const char* category, const char* file, int line, const char* text) {
    get(category, file, line, "", 0) << getText(text);
}

} // namespace qutil
