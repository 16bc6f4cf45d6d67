/// @file
/// A processor fault as an exception; SehTranslator makes them.
#pragma once

#include <stdexcept>

#include <tov/Export.h>

namespace qutil {

/// Says what kind of fault happened, and where.
class ZQX_PLATFORM_API SehException : public std::runtime_error {
public:
    /// @param code the system's number of the fault. @param address of the instruction that faulted.
    SehException(unsigned int code, const void* address);

    /// The exception code on Windows, the signal number elsewhere.
    unsigned int code() const noexcept { return mCode; }

    /// The instruction that faulted; for a call to nowhere, the address called.
    const void* address() const noexcept { return mAddress; }

private:
    unsigned int mCode;
    const void* mAddress;
};

} // namespace qutil
