// What can go wrong, as exceptions that carry the whole line for the user, and warnings. Names of files stand in both
// as they are, any bytes: who shows a line cleans it (zqx/text/Cleaning.h).
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace zqx::pictures {

/// A failure while working on something: exit code 1. The text says what is wrong and, where it helps, what to do.
class Error : public std::runtime_error {
public:
    /// @param subject the file or option at fault
    Error(const std::string& subject, const std::string& text) : std::runtime_error(subject + ": " + text) {}
};

/// An invalid command line: exit code 2.
class UsageError : public Error {
public:
    using Error::Error;
};

/// Ends the program with an exit code of its own. All that there is to say has been said.
struct ExitCode {
    int value;
};

/// Tells the user about something that was done, but not quite as asked: on standard error, or to the thread's
/// listener.
void warn(const std::string& subject, const std::string& remark);

/// Takes the warnings of the calling thread for as long as it lives, in place of standard error.
class WarningListener {
public:
    /// @param listener gets "subject: text"
    explicit WarningListener(std::function<void(const std::string&)> listener);
    WarningListener(const WarningListener&) = delete;
    WarningListener& operator=(const WarningListener&) = delete;
    ~WarningListener();

private:
    std::function<void(const std::string&)> mPrevious;
};

} // namespace zqx::pictures
