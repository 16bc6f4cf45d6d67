/// @file
/// The error object of the utility library.
#pragma once

#include <string>
#include <utility>

#include <tov/Export.h>

namespace qutil {

/// Thrown by pointer, `throw new Error("…")`: whoever catches the pointer deletes it. Not a std::exception, so a guard
/// needs a clause for it.
class ZQX_PLATFORM_API Error {
public:
    /// @param text what went wrong, in words
    explicit Error(std::string text) : mText(std::move(text)) {}

    /// The text; lives as long as this object.
    const char* what() const noexcept { return mText.c_str(); }

private:
    std::string mText;
};

} // namespace qutil
