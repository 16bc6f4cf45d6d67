// A file opened for reading: whole as text, or as the stream that FreeImage decodes from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string>
#include <vector>

#include <FreeImage.h>

namespace zqx::pictures {

/// The path of a UTF-8 file name, on every system.
std::filesystem::path toPath(const std::string& name);

/// Opens a file and remembers whether a reader ran past its end, which is how a cut-off picture shows.
class InputFile {
public:
    /// @throws Error naming the file when it is missing, a directory, or cannot be read
    explicit InputFile(const std::string& name);

    const std::string& name() const { return mName; }

    /// The whole content. @throws Error when there is more than the limit
    std::string readText(std::size_t limit);

    /// Bytes in the file; 0 where it is none of fixed size.
    std::uint64_t size() const;

    /// Up to so many bytes from a place in the file; fewer where it ends.
    std::string readAt(std::uint64_t offset, std::size_t count);

    /// Lets decoders find other bytes than the file's own at a place.
    void mask(std::uint64_t offset, std::string bytes);

    /// The picture format by content, or else by the extension. @throws Error when neither is known
    FREE_IMAGE_FORMAT detectFormat();

    /// Decodes the file with FreeImage; empty when FreeImage refuses.
    FIBITMAP* decode(FREE_IMAGE_FORMAT format, int flags);

    /// True when the last decode asked for bytes at the end of the file, where there were none.
    bool wasReadAtEnd() const { return mReadAtEnd; }
    /// True when the last decode asked for more bytes than were left.
    bool wasReadShort() const { return mReadShort; }

private:
    static unsigned DLL_CALLCONV read(void* buffer, unsigned size, unsigned count, fi_handle handle);
    static int DLL_CALLCONV seek(fi_handle handle, long offset, int origin);
    static long DLL_CALLCONV tell(fi_handle handle);
    static FreeImageIO io();
    void applyMasks(std::uint64_t offset, std::span<char> bytes) const;

    struct Mask {
        std::uint64_t offset;
        std::string bytes;
    };

    std::string mName;
    std::filebuf mFile;
    std::vector<Mask> mMasks;
    bool mReadAtEnd = false;
    bool mReadShort = false;
};

/// Opens a picture. Opening a pipe would wait for somebody who writes to it, and nobody can go back in it.
/// @throws Error also for pipes and sockets
InputFile openPicture(const std::string& name);

} // namespace zqx::pictures
