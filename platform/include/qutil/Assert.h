/// @file
/// Assertions whose failure the host may look at and overrule.
#pragma once

#include <functional>

#include <tov/Export.h>

namespace qutil {

/// Told of a failed assertion: the expression as text and the place of it. Returns whether to carry on regardless. May
/// be called on several threads at a time; what it throws goes to the code that asserted.
using AssertHandler = std::function<bool(const char* expression, const char* file, int line)>;

/// @return the previous handler. An empty one stands for the default, which logs the failure (level 1, category
/// "assert") and returns false. Thread-safe.
ZQX_PLATFORM_API AssertHandler setAssertHandler(AssertHandler handler);

/// Reports a failed assertion to the handler. @return its answer: true to carry on.
ZQX_PLATFORM_API bool zqxAssertFailed(const char* expression, const char* file, int line, const char* function);

} // namespace qutil

/// To be used where something has failed already: reports the text, and yields whether to carry on.
#define zqxAssert(text) ::qutil::zqxAssertFailed((text), __FILE__, __LINE__, __func__)
