// Reading through the standard library's streams, so that file names are UTF-8 on every system.
#include "zqx/pictures/files/InputFile.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <system_error>
#include <utility>

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
    bytes.resize(readAt(offset, std::span(bytes)));
    return bytes;
}

std::size_t InputFile::readAt(std::uint64_t offset, std::span<char> bytes) {
    if (offset > static_cast<std::uint64_t>(std::numeric_limits<std::streamoff>::max())) {
        return 0;
    }
    try {
        const bool reached = mFile.pubseekpos(static_cast<std::streamoff>(offset), std::ios::in) >= 0;
        const auto count = static_cast<std::streamsize>(bytes.size());
        return reached ? static_cast<std::size_t>(std::max<std::streamsize>(0, mFile.sgetn(bytes.data(), count))) : 0;
    } catch (const std::ios_base::failure& failure) { // which a buffer throws where the system fails to read
        mReadFailure = failure.code();
        return 0;
    }
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
