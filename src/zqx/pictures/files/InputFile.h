// A file opened for reading, once: whole as text, or anywhere in it.
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

/// Holds an open file, so that all that is asked of it is asked of the same file, whatever becomes of its name.
class ZQX_PICTURES_EXPORT InputFile final : public ByteSource {
public:
    /// What may be behind a name. From a pipe, such as the shell's <(command), one reads once and in order.
    enum class Source { FILE_OR_PIPE, FILE_ONLY };

    /// Opens without waiting for anybody. @throws Error naming the file when it is missing, cannot be read, or is a
    /// directory, a socket, a device, or a pipe where a file is wanted
    explicit InputFile(const std::string& name, Source source = Source::FILE_OR_PIPE);

    /// A file that is open already, and that this object closes.
    /// @param descriptor of a regular file
    /// @param name for messages
    /// @throws Error naming the file when it is of another kind
    InputFile(int descriptor, const std::string& name);

    const std::string& name() const override { return mName; }

    /// For handing the open file to another process. It belongs to this object.
    std::FILE* stream() const { return mFile.stream.get(); }

    /// The whole content, waiting for it where it comes from a pipe. @throws Error when there is more than the limit,
    /// or when it cannot be read to its end
    std::string readText(std::size_t limit);

    /// Bytes in the file when it was opened; 0 for a pipe.
    std::uint64_t size() const override { return mFile.size; }

    /// Up to so many bytes from a place in the file; fewer where it ends.
    std::string readAt(std::uint64_t offset, std::size_t count);

    /// The same into given memory. @return how many bytes there were
    std::size_t readAt(std::uint64_t offset, std::span<char> bytes) {
        return readAt(offset, bytes.data(), bytes.size());
    }
    std::size_t readAt(std::uint64_t offset, char* bytes, std::size_t count) override;

    std::shared_ptr<const unsigned char> map() const override;

    /// Why the system could not read from the file, if it ever could not.
    const std::error_code& readFailure() const { return mReadFailure; }

private:
    void checkKind(Source source) const;

    std::string mName;
    OpenedFile mFile;
    std::error_code mReadFailure;
};

/// Opens a picture, in which decoders go back and forth.
/// @throws Error as the constructor, also for pipes
ZQX_PICTURES_EXPORT InputFile openPicture(const std::string& name);

} // namespace zqx::pictures
