/// @file
/// Streams for hosts: bytes in memory and files, to be read and written by components.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <utility>
#include <vector>

#include <qutil/IIOStream.h>
#include <tov/CountedObject.h>
#include <tov/Export.h>
#include <tov/IOutputStream.h>
#include <tov/TovRef.h>

namespace qutil {

// One stream is used from one thread at a time. File names are UTF-8. Sizes are 32-bit numbers in the interfaces, so
// input of 4 GiB and more is refused.

/// Reads a copy of some bytes.
class ZQX_PLATFORM_API MemoryInputStream final : public tov::CountedObject<IIOStream> {
public:
    /// @return the stream; empty if the bytes are too many or memory is short.
    static tov::TovRef<MemoryInputStream> create(const void* bytes, std::size_t size);

    /// @{

    /// As described in IIOStream.
    tov::Result getSize(std::uint32_t* pSize) override;
    tov::Result read(std::uint32_t count, unsigned char** pBuffer) override;
    /// @}

private:
    MemoryInputStream(const unsigned char* bytes, std::size_t size) : mBytes(bytes, bytes + size) {}

    std::vector<unsigned char> mBytes;
    std::size_t mPosition = 0;
};

/// Reads a file.
class ZQX_PLATFORM_API FileInputStream final : public tov::CountedObject<IIOStream> {
public:
    /// @return the stream; empty if there is no such regular file, or it cannot be read or is too large.
    static tov::TovRef<FileInputStream> create(std::string_view path);

    /// @{

    /// As described in IIOStream.
    tov::Result getSize(std::uint32_t* pSize) override;
    tov::Result read(std::uint32_t count, unsigned char** pBuffer) override;
    /// @}

private:
    FileInputStream(std::ifstream file, std::uint32_t size) : mFile(std::move(file)), mSize(size) {}

    std::ifstream mFile;
    std::uint32_t mSize;
    std::uint32_t mPosition = 0;
};

/// Collects what is written.
class ZQX_PLATFORM_API MemoryOutputStream final : public tov::CountedObject<tov::IOutputStream> {
public:
    /// @return the stream; empty if memory is short.
    static tov::TovRef<MemoryOutputStream> create();

    /// @return FAILURE when memory is short, then nothing is taken; INVALID_ARGUMENT for bytes at null.
    tov::Result write(const tov::Sequence<unsigned char>& bytes) override;

    /// All that has been written; valid until more is.
    const std::vector<unsigned char>& bytes() const { return mBytes; }

private:
    MemoryOutputStream() = default;

    std::vector<unsigned char> mBytes;
};

/// Writes a file, which appears under its name complete or not at all: until close() it is a temporary beside it.
class ZQX_PLATFORM_API FileOutputStream final : public tov::CountedObject<tov::IOutputStream> {
public:
    /// @return the stream; empty if no file can be made there.
    static tov::TovRef<FileOutputStream> create(std::string_view path);

    /// @return FAILURE when the disk does not take it, NOT_READY after close().
    tov::Result write(const tov::Sequence<unsigned char>& bytes) override;

    /// Puts the file in place, over one that was there. Without it, the last release() removes what was written.
    /// @return FAILURE if anything could not be written, then nothing is changed; NOT_READY when closed already.
    tov::Result close();

private:
    FileOutputStream(std::filesystem::path target, std::filesystem::path temporary);
    ~FileOutputStream() override;

    std::filesystem::path mTarget;
    std::filesystem::path mTemporary;
    std::ofstream mFile;
};

} // namespace qutil
