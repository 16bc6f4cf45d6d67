// Atomic output: a temporary file in the target's directory, renamed over the target at the very end.
// Everything that differs between operating systems is in the first half of this file.
#include "zqx/pictures/files/OutputFile.h"

#include <cerrno>
#include <system_error>

#include "zqx/pictures/files/InputFile.h"
#include "zqx/pictures/files/Interrupts.h"

#if defined(_WIN32)
#define NOMINMAX
#include <fcntl.h>
#include <io.h>
#include <random>
#include <windows.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace zqx::pictures {

namespace fs = std::filesystem;

namespace {

std::string directoryOf(const std::string& target) {
    const fs::path parent = toPath(target).parent_path();
    return parent.empty() ? "." : toName(parent);
}

#if defined(_WIN32)

std::FILE* createBeside(const std::string& target, std::string& temporary) {
    std::random_device random;
    temporary = directoryOf(target) + "/.zqx-img-" + std::to_string(random()) + std::to_string(random());
    return _wfopen(toPath(temporary).c_str(), L"wbx");
}

void removeFile(const std::string& name) {
    _wunlink(toPath(name).c_str());
}
bool storeDurably(std::FILE* stream) {
    return std::fflush(stream) == 0 && _commit(_fileno(stream)) == 0;
}
bool isWritable(const std::string& name, bool) {
    return _waccess(toPath(name).c_str(), 2) == 0;
}
std::error_code renameToNew(const std::string& from, const std::string& to) {
    const bool done = MoveFileExW(toPath(from).c_str(), toPath(to).c_str(), 0) != 0;
    return done ? std::error_code() : std::error_code(static_cast<int>(GetLastError()), std::system_category());
}

#else

/// There is no way to read the mask without setting it, which other threads would notice: once, then.
mode_t newFileMask() {
    static const mode_t mask = [] {
        const mode_t present = umask(0);
        umask(present);
        return present;
    }();
    return mask;
}

mode_t permissionsFor(const std::string& target) {
    struct stat present {};
    if (stat(target.c_str(), &present) == 0) {
        return present.st_mode & 0777;
    }
    return 0666 & ~newFileMask();
}

std::FILE* createBeside(const std::string& target, std::string& temporary) {
    temporary = directoryOf(target) + "/.zqx-img-XXXXXX";
    const int descriptor = mkostemp(temporary.data(), O_CLOEXEC);
    if (descriptor < 0) {
        temporary.clear();
        return nullptr;
    }
    std::FILE* stream = fchmod(descriptor, permissionsFor(target)) == 0 ? fdopen(descriptor, "wb") : nullptr;
    if (stream == nullptr) {
        const int reason = errno;
        close(descriptor);
        errno = reason;
    }
    return stream;
}

void removeFile(const std::string& name) {
    unlink(name.c_str());
}
bool storeDurably(std::FILE* stream) {
    return std::fflush(stream) == 0 && fsync(fileno(stream)) == 0;
}
bool isWritable(const std::string& name, bool directory) {
    return faccessat(AT_FDCWD, name.c_str(), directory ? W_OK | X_OK : W_OK, AT_EACCESS) == 0;
}

std::error_code lastError() {
    return {errno, std::generic_category()};
}

/// Renames over a file that was made just for that: the name is ours from then on. Others may see it empty meanwhile.
std::error_code renameOverPlaceholder(const std::string& from, const std::string& to) {
    const int placeholder = open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (placeholder < 0) {
        return lastError();
    }
    close(placeholder);
    if (rename(from.c_str(), to.c_str()) == 0) {
        return {};
    }
    const std::error_code failure = lastError();
    unlink(to.c_str());
    return failure;
}

std::error_code renameToNew(const std::string& from, const std::string& to) {
#if defined(RENAME_NOREPLACE)
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return {};
    }
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP) { // which file systems that cannot do it say
        return lastError();
    }
#endif
    return renameOverPlaceholder(from, to);
}

#endif

std::error_code renameOver(const std::string& from, const std::string& to) {
    std::error_code failure;
    fs::rename(toPath(from), toPath(to), failure);
    return failure;
}

/// Follows links at the target's name, also to a file that does not exist yet: writing through a link keeps the link.
std::string resolveLinks(const std::string& name) {
    constexpr int MAX_LINKS = 40; // as the kernel
    fs::path path = toPath(name);
    std::error_code failure;
    for (int i = 0; fs::is_symlink(fs::symlink_status(path, failure)); ++i) {
        if (i == MAX_LINKS) {
            throw Error(name, "is a link that leads nowhere");
        }
        const fs::path next = fs::read_symlink(path, failure);
        if (failure) {
            throw Error(name, "is a link that cannot be read (" + failure.message() + ")");
        }
        path = path.parent_path() / next; // an absolute link replaces the whole path
    }
    return toName(path);
}

std::string describe(int errorNumber) {
    return std::generic_category().message(errorNumber);
}

/// The file to write for a name. @throws Error when there is something in the way
std::string checkTarget(const std::string& name) {
    std::string target = resolveLinks(name);
    std::error_code failure;
    const fs::file_status status = fs::status(toPath(target), failure);
    if (fs::is_directory(status)) {
        throw Error(name, "is a directory, name a file in it");
    }
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        throw Error(name, "is not a regular file and would be replaced by one, choose another name");
    }
    if (fs::exists(status) && !isWritable(target, false)) {
        throw Error(name, "is write-protected, choose another name or change its permissions");
    }
    const std::string directory = directoryOf(target);
    const fs::file_status place = fs::status(toPath(directory), failure);
    if (place.type() == fs::file_type::not_found) {
        throw Error(name, "cannot be written because there is no directory " + directory + ", create it first");
    }
    if (fs::exists(place) && !fs::is_directory(place)) {
        throw Error(name, "cannot be written because " + directory + " is not a directory");
    }
    if (!isWritable(directory, true)) {
        throw Error(name,
                    "cannot be written into directory " + directory + " (" + describe(errno) + "), choose another one");
    }
    return target;
}

} // namespace

std::string toName(const fs::path& path) {
    const std::u8string name = path.u8string();
    return {name.begin(), name.end()};
}

void OutputFile::check(const std::string& name) {
    checkTarget(name);
}

OutputFile::OutputFile(const std::string& name, Existing existing)
    : mName(name), mTarget(checkTarget(name)), mExisting(existing) {
    TemporaryFiles temporaries;
    mStream = createBeside(mTarget, mTemporary);
    if (mStream != nullptr) {
        temporaries.add(mTemporary);
        return;
    }
    const int reason = errno;
    if (!mTemporary.empty()) {
        removeFile(mTemporary);
    }
    throw Error(mName, "cannot be created (" + describe(reason) + ")");
}

OutputFile::~OutputFile() {
    discard();
}

void OutputFile::discard() {
    if (mStream != nullptr) {
        std::fclose(mStream);
        mStream = nullptr;
    }
    if (!mTemporary.empty()) {
        TemporaryFiles temporaries;
        removeFile(mTemporary);
        temporaries.forget(mTemporary);
        mTemporary.clear();
    }
}

void OutputFile::noteFailure() {
    if (mFailure == 0) {
        mFailure = errno != 0 ? errno : EIO;
    }
}

void OutputFile::write(std::string_view bytes) {
    errno = 0;
    if (std::fwrite(bytes.data(), 1, bytes.size(), mStream) != bytes.size()) {
        noteFailure();
    }
}

void OutputFile::commit() {
    errno = 0;
    if (!hasFailed() && !storeDurably(mStream)) {
        noteFailure();
    }
    std::FILE* stream = mStream;
    mStream = nullptr;
    errno = 0;
    if (std::fclose(stream) != 0) {
        noteFailure();
    }
    if (hasFailed()) {
        discard();
        throw Error(mName, "could not be written (" + describe(mFailure) + "), nothing was changed");
    }
    std::error_code failure;
    {
        TemporaryFiles temporaries;
        failure = mExisting == Existing::KEEP ? renameToNew(mTemporary, mTarget) : renameOver(mTemporary, mTarget);
        if (!failure) {
            temporaries.forget(mTemporary);
            mTemporary.clear();
            return;
        }
    }
    discard();
    if (failure == std::errc::file_exists) {
        throw FileExists(mName);
    }
    throw Error(mName, "could not be put in place (" + failure.message() + "), nothing was changed");
}

} // namespace zqx::pictures
