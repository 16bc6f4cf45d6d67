// What can go wrong in the program, as exceptions that carry the whole line for the user, and warnings.
#pragma once

#include <cstdio>
#include <stdexcept>
#include <string>

namespace zqx::img::app {

/// A failure while working on something: exit code 1. The text says what is wrong and, where it helps, what to do.
class Error : public std::runtime_error {
public:
    /// @param subject the file or option at fault
    Error(const std::string& subject, const std::string& text) : std::runtime_error(subject + ": " + text) {}
};

/// A command line that cannot be meant: exit code 2.
class UsageError : public Error {
public:
    using Error::Error;
};

/// Tells the user about something that was done, but not quite as asked.
inline void warn(const std::string& subject, const std::string& text) {
    std::fprintf(stderr, "zqx-img: warning: %s: %s\n", subject.c_str(), text.c_str());
}

} // namespace zqx::img::app
