// A file that is opened once for reading, either completely as text or at any offset.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <system_error>

#include "zqx/pictures/ByteSource.h"
#include "zqx/pictures/Export.h"
#include "zqx/pictures/files/FileNames.h"
#include "zqx/pictures/files/FileSystem.h"

namespace zqx::pictures {

/// An open file. All operations refer to the same file, even if its name is changed in the meantime.
class ZQX_PICTURES_EXPORT InputFile final : public ByteSource {
public:
    /// What a name may denote. A pipe, such as the shell's <(command), can be read only once and in order.
    enum class Source { FILE_OR_PIPE, FILE_ONLY };

    /// Opens a file without blocking. @throws Error naming the file if it is missing, cannot be read, or is a folder, a
    /// socket, a device, or a pipe where a file is required
    explicit InputFile(const std::string& name, Source source = Source::FILE_OR_PIPE);

    /// Takes over an open descriptor, which is closed with this object.
    /// @param descriptor of a regular file
    /// @param name for messages
    /// @throws Error naming the file if it is of another kind
    InputFile(int descriptor, const std::string& name);

    const std::string& name() const override { return mName; }

    /// The stream, for passing the open file to another process. Owned by this object.
    std::FILE* stream() const { return mFile.stream.get(); }

    /// Reads the whole content, and blocks if it comes from a pipe. @throws Error if it is larger than the limit or
    /// cannot be read completely
    std::string readText(std::size_t limit);

    /// Size of the file in bytes when it was opened; 0 for a pipe.
    std::uint64_t size() const override { return mFile.size; }

    /// Reads bytes at an offset; fewer if the file ends before.
    std::string readAt(std::uint64_t offset, std::size_t count);

    /// Reads bytes at an offset into a buffer. @return the number of bytes read
    std::size_t readAt(std::uint64_t offset, std::span<char> bytes) {
        return readAt(offset, bytes.data(), bytes.size());
    }
    std::size_t readAt(std::uint64_t offset, char* bytes, std::size_t count) override;

    std::shared_ptr<const unsigned char> map() const override;

    /// The error of the last failed read; none if all reads succeeded.
    const std::error_code& readFailure() const { return mReadFailure; }

private:
    void checkKind(Source source) const;

    std::string mName;
    OpenedFile mFile;
    std::error_code mReadFailure;
};

/// Opens a picture file. It must not be a pipe, since decoders seek.
/// @throws Error like the constructor
ZQX_PICTURES_EXPORT InputFile openPicture(const std::string& name);

} // namespace zqx::pictures
