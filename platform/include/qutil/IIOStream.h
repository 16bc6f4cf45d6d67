/// @file
/// The interface that components read bytes from.
#pragma once

#include <cstdint>

#include <tov/IUnknown.h>

namespace qutil {

/// Bytes to be read in order.
///
/// One stream is used from one thread at a time.
class IIOStream : public tov::IUnknown {
public:
    /// The interface's identifier.
    static constexpr const char* IID = "IDL:qutil/IIOStream:1.0";

    /// The size of the whole stream in bytes, wherever its position is.
    virtual tov::Result getSize(std::uint32_t* pSize) = 0;

    /// Reads bytes at the current position and moves behind them.
    /// @param count how many; fewer left than that is a failure, and reads none.
    /// @param pBuffer receives a buffer that the caller frees with tovFree, or null on failure.
    virtual tov::Result read(std::uint32_t count, unsigned char** pBuffer) = 0;

protected:
    /// @{

    /// For components alone: objects are made by factories and end through release().
    IIOStream() = default;
    IIOStream(const IIOStream&) = default;
    IIOStream& operator=(const IIOStream&) = default;
    ~IIOStream() = default;
    /// @}
};

} // namespace qutil
