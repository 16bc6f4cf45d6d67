// All reads go through one stream; the kind and size are those of the open file, never of its name.
#include "zqx/pictures/files/InputFile.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <system_error>
#include <utility>

#include "zqx/pictures/files/Error.h"

namespace zqx::pictures {

namespace {

/// Why a kind of file cannot be read; null if it can.
const char* obstacle(FileKind kind, InputFile::Source source) {
    switch (kind) {
    case FileKind::DIRECTORY: return "is a folder; name a file";
    case FileKind::SOCKET: return "is a socket; name a file";
    case FileKind::DEVICE: return "is a device; name a file";
    case FileKind::PIPE:
        return source == InputFile::Source::FILE_OR_PIPE
                   ? nullptr
                   : "is a pipe, and pictures cannot be read from pipes; save its output to a file first";
    case FileKind::REGULAR: break;
    }
    return nullptr;
}

} // namespace

ByteSource::~ByteSource() = default;

InputFile::InputFile(const std::string& name, Source source) : mName(name) {
    std::error_code failure;
    mFile = openForReading(name, failure);
    if (failure == std::errc::no_such_file_or_directory || failure == std::errc::not_a_directory) {
        throw Error(name, "there is no such file; check the name");
    }
    if (failure) {
        throw Error(name, "cannot be opened (" + failure.message() + "); check its permissions");
    }
    checkKind(source);
}

InputFile::InputFile(int descriptor, const std::string& name) : mName(name) {
    std::error_code failure;
    mFile = adoptForReading(descriptor, failure);
    if (failure) {
        throw Error(name, "cannot be read (" + failure.message() + ")");
    }
    checkKind(Source::FILE_ONLY);
}

void InputFile::checkKind(Source source) const {
    if (const char* reason = obstacle(mFile.kind, source)) {
        throw Error(mName, reason);
    }
}

std::string InputFile::readText(std::size_t limit) {
    if (mFile.kind == FileKind::PIPE) {
        waitForInput(mFile.stream.get());
    }
    std::string text;
    char block[65536];
    for (std::size_t count = 0; (count = std::fread(block, 1, sizeof block, mFile.stream.get())) > 0;) {
        text.append(block, count);
        if (text.size() > limit) {
            throw Error(mName, "is larger than " + std::to_string(limit >> 20) + " MiB, too large for a document");
        }
    }
    if (std::ferror(mFile.stream.get()) != 0) {
        throw Error(mName, "could not be read completely (" + std::generic_category().message(errno) + ")");
    }
    return text;
}

std::string InputFile::readAt(std::uint64_t offset, std::size_t count) {
    std::string bytes(count, '\0');
    bytes.resize(readAt(offset, std::span(bytes)));
    return bytes;
}

std::size_t InputFile::readAt(std::uint64_t offset, char* bytes, std::size_t wanted) {
    std::FILE* stream = mFile.stream.get();
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) ||
        !seekStream(stream, static_cast<std::int64_t>(offset), SEEK_SET)) {
        return 0;
    }
    errno = 0;
    const std::size_t count = std::fread(bytes, 1, wanted, stream);
    if (count < wanted && std::ferror(stream) != 0) {
        mReadFailure = {errno != 0 ? errno : EIO, std::generic_category()};
        std::clearerr(stream);
    }
    return count;
}

std::shared_ptr<const unsigned char> InputFile::map() const {
    return mapForReading(mFile.stream.get(), mFile.size);
}

InputFile openPicture(const std::string& name) {
    return InputFile(name, InputFile::Source::FILE_ONLY);
}

} // namespace zqx::pictures
