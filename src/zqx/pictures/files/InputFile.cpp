// Reading through the standard library's streams, so that file names are UTF-8 on every system.
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

namespace fs = std::filesystem;

fs::path toPath(const std::string& name) {
    return {std::u8string(name.begin(), name.end())};
}

InputFile::InputFile(const std::string& name) : mName(name) {
    std::error_code failure;
    const fs::file_status status = fs::status(toPath(name), failure);
    if (status.type() == fs::file_type::not_found) {
        throw Error(name, "there is no such file, check the name");
    }
    if (failure) {
        throw Error(name, "cannot be reached (" + failure.message() + ")");
    }
    if (fs::is_directory(status)) {
        throw Error(name, "is a directory, name a file");
    }
    errno = 0;
    if (mFile.open(toPath(name), std::ios::in | std::ios::binary) == nullptr) {
        throw Error(name, "cannot be opened (" + std::generic_category().message(errno) + "), check its permissions");
    }
}

std::string InputFile::readText(std::size_t limit) {
    std::string text;
    char block[65536];
    for (std::streamsize count = 0; (count = mFile.sgetn(block, sizeof block)) > 0;) {
        text.append(block, static_cast<std::size_t>(count));
        if (text.size() > limit) {
            throw Error(mName,
                        "is larger than " + std::to_string(limit >> 20) + " MiB, which is too large for a document");
        }
    }
    return text;
}

std::uint64_t InputFile::size() const {
    std::error_code failure;
    const std::uintmax_t size = fs::file_size(toPath(mName), failure);
    return failure ? 0 : size;
}

std::string InputFile::readAt(std::uint64_t offset, std::size_t count) {
    std::string bytes(count, '\0');
    const bool reached = offset <= static_cast<std::uint64_t>(std::numeric_limits<std::streamoff>::max()) &&
                         mFile.pubseekpos(static_cast<std::streamoff>(offset), std::ios::in) >= 0;
    const std::streamsize got = reached ? mFile.sgetn(bytes.data(), static_cast<std::streamsize>(count)) : 0;
    bytes.resize(static_cast<std::size_t>(std::max<std::streamsize>(0, got)));
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
    mFile.pubseekpos(0, std::ios::in);
    mReadAtEnd = mReadShort = false;
    FreeImageIO callbacks = io();
    return FreeImage_LoadFromHandle(format, &callbacks, this, flags);
}

unsigned InputFile::read(void* buffer, unsigned size, unsigned count, fi_handle handle) {
    InputFile& file = *static_cast<InputFile*>(handle);
    const std::streamsize wanted = static_cast<std::streamsize>(size) * count;
    if (wanted == 0) {
        return 0;
    }
    std::streamoff offset = 0;
    if (!file.mMasks.empty()) {
        offset = file.mFile.pubseekoff(0, std::ios::cur, std::ios::in);
    }
    const std::streamsize got = std::max<std::streamsize>(0, file.mFile.sgetn(static_cast<char*>(buffer), wanted));
    if (!file.mMasks.empty() && offset >= 0) {
        file.applyMasks(static_cast<std::uint64_t>(offset),
                        {static_cast<char*>(buffer), static_cast<std::size_t>(got)});
    }
    file.mReadAtEnd |= got == 0;
    file.mReadShort |= got < wanted;
    // Some decoders do not look at what a read returns: let them find zeros, which end any name, and not chance bytes.
    std::fill_n(static_cast<char*>(buffer) + got, wanted - got, '\0');
    return static_cast<unsigned>(got / size);
}

int InputFile::seek(fi_handle handle, long offset, int origin) {
    const auto from = origin == SEEK_SET ? std::ios::beg : origin == SEEK_CUR ? std::ios::cur : std::ios::end;
    return static_cast<InputFile*>(handle)->mFile.pubseekoff(offset, from, std::ios::in) < 0 ? -1 : 0;
}

long InputFile::tell(fi_handle handle) {
    return static_cast<long>(static_cast<InputFile*>(handle)->mFile.pubseekoff(0, std::ios::cur, std::ios::in));
}

FreeImageIO InputFile::io() {
    return {read, nullptr, seek, tell};
}

InputFile openPicture(const std::string& name) {
    std::error_code failure;
    const fs::file_type type = fs::status(toPath(name), failure).type();
    if (type == fs::file_type::fifo || type == fs::file_type::socket) {
        throw Error(name, "is a pipe, from which pictures cannot be read, name a file");
    }
    return InputFile(name);
}

} // namespace zqx::pictures
