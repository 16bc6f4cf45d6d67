// Files on Windows. No locks are needed, since a file that a process has open cannot be removed by another process.
#include "zqx/pictures/files/FileSystem.h"

#include <cerrno>
#include <filesystem>
#include <limits>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <sys/types.h>

#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#include <windows.h>

#include "zqx/pictures/files/FileNames.h"

namespace zqx::pictures {

namespace fs = std::filesystem;

namespace {

std::error_code lastError() {
    return {errno, std::generic_category()};
}

std::error_code getResult(BOOL succeeded) {
    return succeeded ? std::error_code() : std::error_code(static_cast<int>(GetLastError()), std::system_category());
}

Stream streamFor(int descriptor, const char* mode, std::error_code& failure) {
    Stream stream(_fdopen(descriptor, mode));
    if (!stream) {
        failure = lastError();
        _close(descriptor);
    }
    return stream;
}

} // namespace

OpenedFile openForReading(const std::string& name, std::error_code& failure) {
    OpenedFile file;
    std::error_code ignored;
    if (fs::is_directory(toPath(name), ignored)) { // folders cannot be opened
        file.kind = FileKind::DIRECTORY;
        return file;
    }
    const int descriptor = _wopen(toPath(name).c_str(), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
    if (descriptor < 0) {
        failure = lastError();
        return file;
    }
    return adoptForReading(descriptor, failure);
}

OpenedFile adoptForReading(int descriptor, std::error_code& failure) {
    OpenedFile file;
    struct _stat64 status {};
    if (_fstat64(descriptor, &status) != 0) {
        failure = lastError();
        _close(descriptor);
        return file;
    }
    switch (status.st_mode & _S_IFMT) {
    case _S_IFREG: file.size = static_cast<std::uint64_t>(status.st_size); break;
    case _S_IFIFO: file.kind = FileKind::PIPE; break;
    default: file.kind = FileKind::DEVICE; break;
    }
    file.stream = streamFor(descriptor, "rb", failure);
    return file;
}

std::shared_ptr<const unsigned char> mapForReading(std::FILE* stream, std::uint64_t size) {
    if (size == 0 || size > std::numeric_limits<SIZE_T>::max()) {
        return nullptr;
    }
    const auto file = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    const HANDLE mapping = CreateFileMappingW(file, nullptr, PAGE_READONLY, 0, 0, nullptr);
    if (mapping == nullptr) {
        return nullptr;
    }
    const void* address = MapViewOfFile(mapping, FILE_MAP_READ, 0, 0, static_cast<SIZE_T>(size));
    CloseHandle(mapping); // the view keeps it
    if (address == nullptr) {
        return nullptr;
    }
    return {static_cast<const unsigned char*>(address), [](const unsigned char* bytes) { UnmapViewOfFile(bytes); }};
}

void waitForInput(std::FILE*) { // reading waits
}

bool seekStream(std::FILE* stream, std::int64_t offset, int origin) {
    return _fseeki64(stream, offset, origin) == 0;
}

std::int64_t tellStream(std::FILE* stream) {
    return _ftelli64(stream);
}

Stream createFile(const std::string& name, const std::string&, std::error_code& failure) {
    const int descriptor =
        _wopen(toPath(name).c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
    if (descriptor < 0) {
        failure = lastError();
        return nullptr;
    }
    return streamFor(descriptor, "wb", failure);
}

UseLock::UseLock(std::FILE*) {
}

UseLock::UseLock(const std::string&) {
}

UseLock::UseLock(UseLock&&) noexcept = default;

UseLock& UseLock::operator=(UseLock&&) noexcept = default;

UseLock::~UseLock() = default;

void removeIfAbandoned(const std::string& name, std::chrono::seconds age) {
    std::error_code failure;
    const fs::file_time_type written = fs::last_write_time(toPath(name), failure);
    if (!failure && fs::file_time_type::clock::now() - written >= age) {
        removeFile(name);
    }
}

void removeFile(const std::string& name) {
    _wunlink(toPath(name).c_str());
}

bool storeDurably(std::FILE* stream) {
    return std::fflush(stream) == 0 && _commit(_fileno(stream)) == 0;
}

std::error_code storeFolder(const std::string&) {
    return {};
}

bool isWritable(const std::string& name, bool) {
    constexpr int WRITE = 2;
    return _waccess(toPath(name).c_str(), WRITE) == 0;
}

std::error_code renameOver(const std::string& from, const std::string& to) {
    return getResult(MoveFileExW(toPath(from).c_str(), toPath(to).c_str(), MOVEFILE_REPLACE_EXISTING));
}

std::error_code renameToNew(const std::string& from, const std::string& to) {
    return getResult(MoveFileExW(toPath(from).c_str(), toPath(to).c_str(), 0));
}

std::error_code linkFile(const std::string& name, const std::string& second) {
    return getResult(CreateHardLinkW(toPath(second).c_str(), toPath(name).c_str(), nullptr));
}

} // namespace zqx::pictures
