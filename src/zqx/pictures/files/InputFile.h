// A file opened for reading, once: whole as text, in parts, or as the stream that FreeImage decodes from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <FreeImage.h>

#include "zqx/pictures/files/FileNames.h"
#include "zqx/pictures/files/FileSystem.h"

namespace zqx::pictures {

/// Holds an open file, so that all that is asked of it is asked of the same file, whatever becomes of its name; and
/// remembers whether a reader ran past the end, which is how a cut-off picture shows.
class InputFile {
public:
    /// What may be behind a name. From a pipe, such as the shell's <(command), one reads once and in order.
    enum class Source { FILE_OR_PIPE, FILE_ONLY };

    /// Opens without waiting for anybody. @throws Error naming the file when it is missing, cannot be read, or is a
    /// directory, a socket, a device, or a pipe where a file is wanted
    explicit InputFile(const std::string& name, Source source = Source::FILE_OR_PIPE);

    const std::string& name() const { return mName; }

    /// The whole content, waiting for it where it comes from a pipe. @throws Error when there is more than the limit,
    /// or when it cannot be read to its end
    std::string readText(std::size_t limit);

    /// Bytes in the file when it was opened; 0 for a pipe.
    std::uint64_t size() const { return mFile.size; }

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
    OpenedFile mFile;
    std::vector<Mask> mMasks;
    bool mReadAtEnd = false;
    bool mReadShort = false;
};

/// Opens a picture, in which decoders go back and forth.
/// @throws Error as the constructor, also for pipes
InputFile openPicture(const std::string& name);

} // namespace zqx::pictures
