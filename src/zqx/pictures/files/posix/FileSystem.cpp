// Files on POSIX systems.
#include "zqx/pictures/files/FileSystem.h"

#include <cerrno>
#include <ctime>
#include <limits>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zqx::pictures {

namespace {

std::error_code lastError() {
    return {errno, std::generic_category()};
}

std::error_code getResult(int returned) {
    return returned == 0 ? std::error_code() : lastError();
}

/// Repeats a system call that a signal interrupted.
template <typename Call>
auto persistently(Call call) {
    auto result = call();
    while (result < 0 && errno == EINTR) {
        result = call();
    }
    return result;
}

int openDescriptor(const std::string& name, int flags, mode_t mode = 0) {
    return persistently([&] { return open(name.c_str(), flags | O_CLOEXEC | O_NOCTTY, mode); });
}

Stream streamFor(int descriptor, const char* mode, std::error_code& failure) {
    Stream stream(fdopen(descriptor, mode));
    if (!stream) {
        failure = lastError();
        close(descriptor);
    }
    return stream;
}

FileKind getKind(const struct stat& status) {
    if (S_ISREG(status.st_mode)) {
        return FileKind::REGULAR;
    }
    if (S_ISDIR(status.st_mode)) {
        return FileKind::DIRECTORY;
    }
    if (S_ISFIFO(status.st_mode)) {
        return FileKind::PIPE;
    }
    return S_ISSOCK(status.st_mode) ? FileKind::SOCKET : FileKind::DEVICE;
}

bool isSocket(const std::string& name) {
    struct stat status {};
    return stat(name.c_str(), &status) == 0 && S_ISSOCK(status.st_mode);
}

bool lock(int descriptor) {
    return persistently([descriptor] { return flock(descriptor, LOCK_EX | LOCK_NB); }) == 0;
}

bool isAbandoned(int descriptor, const std::string& name, std::chrono::seconds age) {
    struct stat opened {};
    if (fstat(descriptor, &opened) != 0 || !S_ISREG(opened.st_mode) || opened.st_uid != geteuid() ||
        std::time(nullptr) - opened.st_mtime < age.count() || !lock(descriptor)) {
        return false;
    }
    // The previous owner of the lock may have renamed the file.
    struct stat named {};
    return lstat(name.c_str(), &named) == 0 && named.st_dev == opened.st_dev && named.st_ino == opened.st_ino;
}

/// Reserves the new name with an empty file and renames over it. Other processes may see the empty file meanwhile.
std::error_code renameOverPlaceholder(const std::string& from, const std::string& to) {
    const int placeholder = openDescriptor(to, O_WRONLY | O_CREAT | O_EXCL, 0600);
    if (placeholder < 0) {
        return lastError();
    }
    close(placeholder);
    const std::error_code failure = renameOver(from, to);
    if (failure) {
        unlink(to.c_str());
    }
    return failure;
}

} // namespace

OpenedFile openForReading(const std::string& name, std::error_code& failure) {
    OpenedFile file;
    const int descriptor = openDescriptor(name, O_RDONLY | O_NONBLOCK);
    if (descriptor < 0) {
        failure = lastError();
        if (failure.value() == ENXIO && isSocket(name)) { // sockets cannot be opened by name
            failure.clear();
            file.kind = FileKind::SOCKET;
        }
        return file;
    }
    fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) & ~O_NONBLOCK);
    return adoptForReading(descriptor, failure);
}

OpenedFile adoptForReading(int descriptor, std::error_code& failure) {
    OpenedFile file;
    struct stat status {};
    if (fstat(descriptor, &status) != 0) {
        failure = lastError();
        close(descriptor);
        return file;
    }
    file.kind = getKind(status);
    if (file.kind == FileKind::DIRECTORY || file.kind == FileKind::SOCKET) {
        close(descriptor);
        return file;
    }
    file.size = file.kind == FileKind::REGULAR ? static_cast<std::uint64_t>(status.st_size) : 0;
    file.stream = streamFor(descriptor, "rb", failure);
    return file;
}

std::shared_ptr<const unsigned char> mapForReading(std::FILE* stream, std::uint64_t size) {
    if (size == 0 || size > std::numeric_limits<std::size_t>::max()) {
        return nullptr;
    }
    const auto bytes = static_cast<std::size_t>(size);
    void* address = mmap(nullptr, bytes, PROT_READ, MAP_PRIVATE, fileno(stream), 0);
    if (address == MAP_FAILED) {
        return nullptr;
    }
    return {static_cast<const unsigned char*>(address),
            [address, bytes](const unsigned char*) { munmap(address, bytes); }};
}

void waitForInput(std::FILE* pipe) {
    constexpr int FOREVER = -1;
    pollfd readable{fileno(pipe), POLLIN, 0};
    persistently([&] { return poll(&readable, 1, FOREVER); });
}

bool seekStream(std::FILE* stream, std::int64_t offset, int origin) {
    return fseeko(stream, static_cast<off_t>(offset), origin) == 0;
}

std::int64_t tellStream(std::FILE* stream) {
    return ftello(stream);
}

Stream createFile(const std::string& name, const std::string& model, std::error_code& failure) {
    constexpr mode_t PERMISSIONS = 0777;
    constexpr mode_t NEW_FILE = 0666; // minus the user's umask
    struct stat present {};
    const bool hasModel = stat(model.c_str(), &present) == 0;
    const mode_t mode = hasModel ? present.st_mode & PERMISSIONS : NEW_FILE;
    const int descriptor = openDescriptor(name, O_WRONLY | O_CREAT | O_EXCL, mode);
    if (descriptor < 0) {
        failure = lastError();
        return nullptr;
    }
    if (hasModel && fchmod(descriptor, mode) != 0) {
        failure = lastError();
        close(descriptor);
        unlink(name.c_str());
        return nullptr;
    }
    Stream stream = streamFor(descriptor, "wb", failure);
    if (!stream) {
        unlink(name.c_str());
    }
    return stream;
}

UseLock::UseLock(std::FILE* stream) : mDescriptor(fcntl(fileno(stream), F_DUPFD_CLOEXEC, 0)) {
    if (mDescriptor >= 0) {
        lock(mDescriptor);
    }
}

UseLock::UseLock(const std::string& name) : mDescriptor(openDescriptor(name, O_RDONLY | O_NONBLOCK | O_NOFOLLOW)) {
    if (mDescriptor >= 0) {
        lock(mDescriptor);
    }
}

UseLock::UseLock(UseLock&& other) noexcept : mDescriptor(std::exchange(other.mDescriptor, -1)) {
}

UseLock& UseLock::operator=(UseLock&& other) noexcept {
    std::swap(mDescriptor, other.mDescriptor);
    return *this;
}

UseLock::~UseLock() {
    if (mDescriptor >= 0) {
        close(mDescriptor);
    }
}

void removeIfAbandoned(const std::string& name, std::chrono::seconds age) {
    const int descriptor = openDescriptor(name, O_RDONLY | O_NONBLOCK | O_NOFOLLOW);
    if (descriptor < 0) {
        return;
    }
    if (isAbandoned(descriptor, name, age)) {
        unlink(name.c_str());
    }
    close(descriptor);
}

void removeFile(const std::string& name) {
    unlink(name.c_str());
}

bool storeDurably(std::FILE* stream) {
    return std::fflush(stream) == 0 && persistently([stream] { return fsync(fileno(stream)); }) == 0;
}

std::error_code storeFolder(const std::string& folder) {
    const int descriptor = openDescriptor(folder, O_RDONLY | O_DIRECTORY);
    if (descriptor < 0) { // a folder may be writable without being readable
        return {};
    }
    const int result = persistently([descriptor] { return fsync(descriptor); });
    const std::error_code failure = getResult(result);
    close(descriptor);
    return failure == std::errc::invalid_argument ? std::error_code()
                                                  : failure; // on file systems that do not support it
}

bool isWritable(const std::string& name, bool isFolder) {
    return faccessat(AT_FDCWD, name.c_str(), isFolder ? W_OK | X_OK : W_OK, AT_EACCESS) == 0;
}

std::error_code renameOver(const std::string& from, const std::string& to) {
    return getResult(rename(from.c_str(), to.c_str()));
}

std::error_code renameToNew(const std::string& from, const std::string& to) {
#if defined(RENAME_NOREPLACE)
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return {};
    }
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP) { // on file systems that do not support it
        return lastError();
    }
#endif
    return renameOverPlaceholder(from, to);
}

std::error_code linkFile(const std::string& name, const std::string& second) {
    return getResult(link(name.c_str(), second.c_str()));
}

} // namespace zqx::pictures
