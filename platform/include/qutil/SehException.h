/// @file
/// A processor fault as an exception; SehTranslator makes them.
#pragma once

#include <exception>

#include <tov/Export.h>

namespace qutil {

/// Says what kind of fault happened, and where. Holds its text itself: it is made where no memory can be asked for.
class ZQX_PLATFORM_API SehException : public std::exception {
public:
    /// @param code the system's number of the fault. @param address of the instruction that faulted.
    SehException(unsigned int code, const void* address) noexcept;

    /// Code and address in words; lives as long as this object.
    const char* what() const noexcept override;

    /// The exception code on Windows, the signal number elsewhere.
    unsigned int code() const noexcept { return mCode; }

    /// The instruction that faulted; for a call to nowhere, the address called.
    const void* address() const noexcept { return mAddress; }

private:
    unsigned int mCode;
    const void* mAddress;
    char mText[56]; // both numbers at their longest
};

} // namespace qutil
