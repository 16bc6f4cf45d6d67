/// @file
/// Errors and warnings about picture files.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

#include <zqx/pictures/Export.h>

namespace zqx::pictures {

/// A failure to do what was asked. what() is a complete line for people, such as "photo.jpg: is cut short; get a
/// complete copy": what is wrong with what and, where it helps, what to do about it.
/// @ingroup pictures
class ZQX_PICTURES_EXPORT Error : public std::runtime_error {
public:
    /// @param subject the file or option at fault
    /// @param text what is wrong with it
    Error(const std::string& subject, const std::string& text) : std::runtime_error(subject + ": " + text) {}
    /// Copies the message.
    Error(const Error&) = default;
    ~Error() override;
};

/// A request that cannot succeed whatever the files contain, such as an output whose extension belongs to no format.
/// @ingroup pictures
class ZQX_PICTURES_EXPORT UsageError : public Error {
public:
    using Error::Error;
    /// Copies the message.
    UsageError(const UsageError&) = default;
    ~UsageError() override;
};

/// Receives warnings, each a complete line "subject: text".
/// @ingroup pictures
using WarningHandler = std::function<void(const std::string& line)>;

/// Reports that something was done, but not exactly as asked. The warning goes to the calling thread's WarningListener,
/// or to the handler of the process if the thread has none.
/// @param subject the file or option concerned
/// @param text what differs from what was asked for
/// @ingroup pictures
ZQX_PICTURES_EXPORT void warn(const std::string& subject, const std::string& text);

/// Sets the handler for warnings of threads that have no WarningListener. Without a handler they are discarded.
///
/// Call it before other threads use the library. The handler itself may be called by any thread, also by several at
/// once.
/// @ingroup pictures
ZQX_PICTURES_EXPORT void setWarningHandler(WarningHandler handler);

/// Receives the warnings of the calling thread for as long as it exists. If listeners are nested, the innermost one
/// receives them.
/// @ingroup pictures
class ZQX_PICTURES_EXPORT WarningListener {
public:
    /// @param listener called on this thread only
    explicit WarningListener(WarningHandler listener);
    WarningListener(const WarningListener&) = delete;
    WarningListener& operator=(const WarningListener&) = delete;
    /// Restores the listener that was active before.
    ~WarningListener();

private:
    WarningHandler mPrevious;
};

} // namespace zqx::pictures
