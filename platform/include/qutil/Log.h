/// @file
/// The logging service: records with their place in the source, handed to one sink that the host may replace.
#pragma once

#include <functional>
#include <sstream>
#include <string>

#include <tov/Export.h>

namespace qutil {

class Error;
class SehException;

/// One thing that was logged.
struct LogRecord {
    std::string category; ///< what kind of thing it is about
    std::string file;     ///< source file
    int line;             ///< line in it
    /// Signature of the function; empty for exceptions that a guard has caught.
    std::string function;
    /// 0 for what must not happen; the higher, the less it matters.
    int level;
    std::string text; ///< what is to be said
};

/// A record in the making: collects text, and hands the record over at its end. Use it as a temporary.
class ZQX_PLATFORM_API LogStream {
public:
    /// @param record place and level; its text is replaced by what is collected
    explicit LogStream(LogRecord record);
    /// Hands the record to the sink. Never throws: a record that there is no memory for is lost.
    ~LogStream();
    LogStream(const LogStream&) = delete;
    LogStream& operator=(const LogStream&) = delete;

    /// Appends a value as output streams write it, numbers without thousands separators.
    template <typename T>
    LogStream& operator<<(const T& value) {
        mText << value;
        return *this;
    }

private:
    LogRecord mRecord;
    std::ostringstream mText;
};

/// All of it is thread-safe. Null texts are taken as empty.
class ZQX_PLATFORM_API Log {
public:
    /// Receives every record, on the thread that made it, several at a time if need be; what it throws is dropped.
    using Sink = std::function<void(const LogRecord&)>;

    /// The highest level worth a record. Whoever logs asks first, as records are made at any level: 2 unless set.
    static int reportingLevel();
    /// @param level highest level worth a record from now on
    static void setReportingLevel(int level);

    /// @return the previous sink. An empty one stands for the default, which writes lines to the error output.
    static Sink setSink(Sink sink);

    /// Begins a record: `Log::get(…) << "text";`.
    static LogStream get(const char* category, const char* file, int line, const char* function, int level);

    /// @{

    /// Records an exception that nothing else handles, at level 0.
    static void logFatalException(const char* category, const char* file, int line, const SehException& exception);
    static void logFatalException(const char* category, const char* file, int line, const Error& error);
    static void logFatalException(const char* category, const char* file, int line, const char* text);
    /// @}
};

} // namespace qutil
