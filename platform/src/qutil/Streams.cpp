// Streams for hosts. Nothing throws here: results cross interfaces.
#include <qutil/Streams.h>

#include <algorithm>
#include <limits>
#include <random>
#include <string>
#include <system_error>
#include <utility>

#include <tov/Runtime.h>

namespace qutil {

namespace fs = std::filesystem;

namespace {

constexpr std::uint64_t MAX_SIZE = std::numeric_limits<std::uint32_t>::max();

/// The marked type makes the conversion from UTF-8 explicit; plain char would mean the code page on some systems.
fs::path getPath(std::string_view name) {
    return std::u8string(name.begin(), name.end());
}

/// Runs a function that makes an object; whatever it throws becomes an empty reference.
template <typename T, typename Make>
tov::TovRef<T> createGuarded(Make make) {
    try {
        return make();
    } catch (...) {
        return {};
    }
}

tov::Result storeSize(std::size_t size, std::uint32_t* pSize) {
    if (pSize == nullptr) {
        return tov::INVALID_ARGUMENT;
    }
    *pSize = static_cast<std::uint32_t>(size);
    return tov::SUCCESS;
}

/// What reading has in common: the buffer, and what becomes of it when fill(buffer), which gets the bytes, fails.
template <typename Fill>
tov::Result readInto(unsigned char** pBuffer, std::uint32_t count, std::size_t left, Fill fill) {
    if (pBuffer == nullptr) {
        return tov::INVALID_ARGUMENT;
    }
    *pBuffer = nullptr;
    // Compared before memory is taken: a wrong count may be huge.
    auto* buffer = count <= left ? static_cast<unsigned char*>(tov::tovCalloc(count, 1)) : nullptr;
    if (buffer == nullptr || !fill(buffer)) {
        tov::tovFree(buffer);
        return tov::FAILURE;
    }
    *pBuffer = buffer;
    return tov::SUCCESS;
}

bool isValid(const tov::Sequence<unsigned char>& bytes) {
    return bytes.data != nullptr || bytes.count == 0;
}

/// A name in the target's directory that nobody else uses: renaming works within a file system only.
fs::path temporaryFor(const fs::path& target) {
    std::random_device random;
    fs::path name = target;
    for (int i = 0; i < 2; ++i) {
        name += '.';
        name += std::to_string(random());
    }
    name += ".tmp";
    return name;
}

} // namespace

tov::TovRef<MemoryInputStream> MemoryInputStream::create(const void* bytes, std::size_t size) {
    return createGuarded<MemoryInputStream>([&] {
        if (size > MAX_SIZE || (bytes == nullptr && size != 0)) {
            return tov::TovRef<MemoryInputStream>();
        }
        return tov::TovRef(new MemoryInputStream(static_cast<const unsigned char*>(bytes), size));
    });
}

tov::Result MemoryInputStream::getSize(std::uint32_t* pSize) {
    return storeSize(mBytes.size(), pSize);
}

tov::Result MemoryInputStream::read(std::uint32_t count, unsigned char** pBuffer) {
    return readInto(pBuffer, count, mBytes.size() - mPosition, [&](unsigned char* buffer) {
        std::copy_n(mBytes.data() + mPosition, count, buffer);
        mPosition += count;
        return true;
    });
}

tov::TovRef<FileInputStream> FileInputStream::create(std::string_view path) {
    return createGuarded<FileInputStream>([&] {
        const fs::path source = getPath(path);
        const std::uint64_t size = fs::file_size(source);
        std::ifstream file(source, std::ios::binary);
        if (size > MAX_SIZE || !file) {
            return tov::TovRef<FileInputStream>();
        }
        return tov::TovRef(new FileInputStream(std::move(file), static_cast<std::uint32_t>(size)));
    });
}

tov::Result FileInputStream::getSize(std::uint32_t* pSize) {
    return storeSize(mSize, pSize);
}

tov::Result FileInputStream::read(std::uint32_t count, unsigned char** pBuffer) {
    return readInto(pBuffer, count, mSize - mPosition, [&](unsigned char* buffer) {
        mFile.clear();
        mFile.seekg(mPosition);
        // The file may have become shorter since it was opened.
        if (!mFile.read(reinterpret_cast<char*>(buffer), count)) {
            return false;
        }
        mPosition += count;
        return true;
    });
}

tov::TovRef<MemoryOutputStream> MemoryOutputStream::create() {
    return createGuarded<MemoryOutputStream>([] { return tov::TovRef(new MemoryOutputStream); });
}

tov::Result MemoryOutputStream::write(const tov::Sequence<unsigned char>& bytes) {
    if (!isValid(bytes)) {
        return tov::INVALID_ARGUMENT;
    }
    try {
        mBytes.insert(mBytes.end(), bytes.data, bytes.data + bytes.count);
        return tov::SUCCESS;
    } catch (...) {
        return tov::FAILURE;
    }
}

tov::TovRef<FileOutputStream> FileOutputStream::create(std::string_view path) {
    return createGuarded<FileOutputStream>([&] {
        const fs::path target = getPath(path);
        // Found out now rather than after all the writing.
        if (target.empty() || fs::is_directory(target)) {
            return tov::TovRef<FileOutputStream>();
        }
        tov::TovRef stream(new FileOutputStream(target, temporaryFor(target)));
        return stream->mFile ? stream : tov::TovRef<FileOutputStream>();
    });
}

FileOutputStream::FileOutputStream(fs::path target, fs::path temporary)
    : mTarget(std::move(target)), mTemporary(std::move(temporary)), mFile(mTemporary, std::ios::binary) {
}

FileOutputStream::~FileOutputStream() {
    if (!mTemporary.empty()) {
        mFile.close();
        std::error_code ignored;
        fs::remove(mTemporary, ignored);
    }
}

tov::Result FileOutputStream::write(const tov::Sequence<unsigned char>& bytes) {
    if (!isValid(bytes)) {
        return tov::INVALID_ARGUMENT;
    }
    if (mTemporary.empty()) {
        return tov::NOT_READY;
    }
    mFile.write(reinterpret_cast<const char*>(bytes.data), bytes.count);
    return mFile ? tov::SUCCESS : tov::FAILURE;
}

tov::Result FileOutputStream::close() {
    if (mTemporary.empty()) {
        return tov::NOT_READY;
    }
    mFile.close();
    const fs::path temporary = std::exchange(mTemporary, {});
    std::error_code error;
    if (mFile) {
        fs::rename(temporary, mTarget, error);
    }
    if (!mFile || error) {
        fs::remove(temporary, error);
        return tov::FAILURE;
    }
    return tov::SUCCESS;
}

} // namespace qutil
