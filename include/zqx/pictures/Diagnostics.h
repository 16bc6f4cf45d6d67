/// @file
/// Errors and warnings about picture files.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

#include <zqx/pictures/Export.h>

namespace zqx::pictures {

/// A failure while working on something. what() is a whole line for people: "photo.jpg: is cut short, get a complete
/// copy". It says what is wrong and, where it helps, what to do.
/// @ingroup pictures
class ZQX_PICTURES_EXPORT Error : public std::runtime_error {
public:
    /// @param subject the file or option at fault
    /// @param text what is wrong with it
    Error(const std::string& subject, const std::string& text) : std::runtime_error(subject + ": " + text) {}
    /// A copy.
    Error(const Error&) = default;
    ~Error() override;
};

/// A request that can never be carried out, such as a file name whose extension stands for no format.
/// @ingroup pictures
class ZQX_PICTURES_EXPORT UsageError : public Error {
public:
    using Error::Error;
    /// A copy.
    UsageError(const UsageError&) = default;
    ~UsageError() override;
};

/// Receives warnings, each a whole line "subject: text".
/// @ingroup pictures
using WarningHandler = std::function<void(const std::string& line)>;

/// Reports something that was done, but not quite as asked: to the thread's WarningListener, else to the handler of the
/// process.
/// @param subject the file at fault
/// @param text what is not as it was asked for
/// @ingroup pictures
ZQX_PICTURES_EXPORT void warn(const std::string& subject, const std::string& text);

/// Sets what gets the warnings of threads without a listener. Without one they are dropped.
///
/// To be called before other threads use the library; the handler itself is called by any thread.
/// @ingroup pictures
ZQX_PICTURES_EXPORT void setWarningHandler(WarningHandler handler);

/// Takes the warnings of the calling thread for as long as it lives. Of nested ones the innermost gets them.
/// @ingroup pictures
class ZQX_PICTURES_EXPORT WarningListener {
public:
    /// @param listener is called on this thread
    explicit WarningListener(WarningHandler listener);
    WarningListener(const WarningListener&) = delete;
    WarningListener& operator=(const WarningListener&) = delete;
    /// Gives the warnings back to whoever had them before.
    ~WarningListener();

private:
    WarningHandler mPrevious;
};

} // namespace zqx::pictures
