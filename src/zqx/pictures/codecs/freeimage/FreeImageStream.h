// A picture file as an input stream of FreeImage.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <utility>

#include <FreeImage.h>

#include "zqx/pictures/bytes/ByteMask.h"
#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

/// Reads a file for FreeImage and records whether a decoder tried to read past its end, which reveals a truncated file.
class FreeImageStream {
public:
    explicit FreeImageStream(InputFile& file, ByteMask mask = {}) : mFile(file), mMask(std::move(mask)) {}

    /// The format by content; FIF_UNKNOWN for none.
    FREE_IMAGE_FORMAT detectFormat();

    /// Decodes the file; null if FreeImage refuses it.
    FIBITMAP* decode(FREE_IMAGE_FORMAT format, int flags);

    /// Whether the decoder tried to read at the end of the file.
    bool wasReadAtEnd() const { return mReadAtEnd; }
    /// Whether the decoder tried to read more bytes than were left.
    bool wasReadShort() const { return mReadShort; }

private:
    static unsigned DLL_CALLCONV read(void* buffer, unsigned size, unsigned count, fi_handle handle);
    static int DLL_CALLCONV seek(fi_handle handle, long offset, int origin);
    static long DLL_CALLCONV tell(fi_handle handle);
    static FreeImageIO io();

    std::size_t take(std::span<char> bytes);
    std::size_t takeFromWindow(std::span<char> bytes);

    InputFile& mFile;
    ByteMask mMask;
    std::uint64_t mPlace = 0;
    std::string mWindow; // a buffered part of the file, since decoders make many small reads
    std::uint64_t mWindowPlace = 0;
    bool mReadAtEnd = false;
    bool mReadShort = false;
};

} // namespace zqx::pictures
