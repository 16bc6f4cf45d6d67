// One stream serves all readers; positions and kinds of files are the open file's, never those of its name.
#include "zqx/pictures/files/InputFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <system_error>
#include <utility>

#include "zqx/pictures/codecs/Form.h"
#include "zqx/pictures/files/Error.h"

namespace zqx::pictures {

namespace {

/// What keeps a file of some kind from being read; nothing for those that can be.
const char* obstacle(FileKind kind, InputFile::Source source) {
    switch (kind) {
    case FileKind::DIRECTORY: return "is a directory, name a file";
    case FileKind::SOCKET: return "is a socket, name a file";
    case FileKind::DEVICE: return "is a device, name a file";
    case FileKind::PIPE:
        return source == InputFile::Source::FILE_OR_PIPE
                   ? nullptr
                   : "is a pipe, from which pictures cannot be read; save what comes out of it to a file first";
    case FileKind::REGULAR: break;
    }
    return nullptr;
}

} // namespace

InputFile::InputFile(const std::string& name, Source source) : mName(name) {
    std::error_code failure;
    mFile = openForReading(name, failure);
    if (failure == std::errc::no_such_file_or_directory || failure == std::errc::not_a_directory) {
        throw Error(name, "there is no such file, check the name");
    }
    if (failure) {
        throw Error(name, "cannot be opened (" + failure.message() + "), check its permissions");
    }
    if (const char* reason = obstacle(mFile.kind, source)) {
        throw Error(name, reason);
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
            throw Error(mName,
                        "is larger than " + std::to_string(limit >> 20) + " MiB, which is too large for a document");
        }
    }
    if (std::ferror(mFile.stream.get()) != 0) {
        throw Error(mName, "could not be read to its end (" + std::generic_category().message(errno) + ")");
    }
    return text;
}

std::string InputFile::readAt(std::uint64_t offset, std::size_t count) {
    std::string bytes(count, '\0');
    const bool reached = offset <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) &&
                         seekStream(mFile.stream.get(), static_cast<std::int64_t>(offset), SEEK_SET);
    bytes.resize(reached ? std::fread(bytes.data(), 1, count, mFile.stream.get()) : 0);
    return bytes;
}

void InputFile::mask(std::uint64_t offset, std::string bytes) {
    mMasks.push_back({offset, std::move(bytes)});
}

void InputFile::applyMasks(std::uint64_t offset, std::span<char> bytes) const {
    for (const Mask& mask : mMasks) {
        const std::uint64_t begin = std::max(mask.offset, offset);
        const std::uint64_t end = std::min(mask.offset + mask.bytes.size(), offset + bytes.size());
        if (begin < end) {
            std::copy_n(mask.bytes.data() + (begin - mask.offset), end - begin, bytes.data() + (begin - offset));
        }
    }
}

FREE_IMAGE_FORMAT InputFile::detectFormat() {
    FreeImageIO callbacks = io();
    FREE_IMAGE_FORMAT format = FreeImage_GetFileTypeFromHandle(&callbacks, this, 0);
    if (format == FIF_UNKNOWN) {
        format = formatOfName(mName);
    }
    if (format == FIF_UNKNOWN || !FreeImage_FIFSupportsReading(format)) {
        throw Error(mName, "is not a picture in a known format");
    }
    return format;
}

FIBITMAP* InputFile::decode(FREE_IMAGE_FORMAT format, int flags) {
    std::rewind(mFile.stream.get());
    mReadAtEnd = mReadShort = false;
    FreeImageIO callbacks = io();
    return FreeImage_LoadFromHandle(format, &callbacks, this, flags);
}

unsigned InputFile::read(void* buffer, unsigned size, unsigned count, fi_handle handle) {
    InputFile& file = *static_cast<InputFile*>(handle);
    const std::size_t wanted = std::size_t{size} * count;
    if (wanted == 0) {
        return 0;
    }
    const std::int64_t offset = file.mMasks.empty() ? 0 : tellStream(file.mFile.stream.get());
    const std::size_t got = std::fread(buffer, 1, wanted, file.mFile.stream.get());
    if (!file.mMasks.empty() && offset >= 0) {
        file.applyMasks(static_cast<std::uint64_t>(offset), {static_cast<char*>(buffer), got});
    }
    file.mReadAtEnd |= got == 0;
    file.mReadShort |= got < wanted;
    // Some decoders do not look at what a read returns: let them find zeros, which end any name, and not chance bytes.
    std::fill_n(static_cast<char*>(buffer) + got, wanted - got, '\0');
    return static_cast<unsigned>(got / size);
}

int InputFile::seek(fi_handle handle, long offset, int origin) {
    return seekStream(static_cast<InputFile*>(handle)->mFile.stream.get(), offset, origin) ? 0 : -1;
}

long InputFile::tell(fi_handle handle) {
    return static_cast<long>(tellStream(static_cast<InputFile*>(handle)->mFile.stream.get()));
}

FreeImageIO InputFile::io() {
    return {read, nullptr, seek, tell};
}

InputFile openPicture(const std::string& name) {
    return InputFile(name, InputFile::Source::FILE_ONLY);
}

} // namespace zqx::pictures
