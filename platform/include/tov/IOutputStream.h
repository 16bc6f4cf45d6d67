/// @file
/// The interface that components write bytes to.
#pragma once

#include <tov/IUnknown.h>
#include <tov/Sequence.h>

namespace tov {

/// Bytes to be written in order.
///
/// One stream is used from one thread at a time.
class IOutputStream : public IUnknown {
public:
    /// The interface's identifier.
    static constexpr const char* IID = "IDL:tov/IOutputStream:1.0";

    /// Appends bytes, all or (a failure) an unknown part of them; they are the caller's again afterwards.
    virtual Result write(const Sequence<unsigned char>& bytes) = 0;

protected:
    /// @{

    /// For components alone: objects are made by factories and end through release().
    IOutputStream() = default;
    IOutputStream(const IOutputStream&) = default;
    IOutputStream& operator=(const IOutputStream&) = default;
    ~IOutputStream() = default;
    /// @}
};

} // namespace tov
