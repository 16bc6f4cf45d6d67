// Atomic output: a temporary file in the target's directory, renamed over the target at the very end.
// Everything that differs between operating systems is in the first half of this file.
#include "OutputFile.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "Error.h"
#include "InputFile.h"

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <random>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace zqx::img::app {

namespace fs = std::filesystem;

namespace {

std::string toName(const fs::path& path) {
    const std::u8string name = path.u8string();
    return {name.begin(), name.end()};
}

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
void removeOnSignals(const std::string&) {
}
void forgetOnSignals(const std::string&) {
}

#else

// An interrupted program must not leave its temporaries behind. A signal handler may only touch lock-free memory and
// call unlink, hence the fixed places and no strings.
constexpr std::size_t MAX_PATH_BYTES = 4096;
struct Doomed {
    std::atomic<bool> used{false};
    char path[MAX_PATH_BYTES];
};
std::array<Doomed, 4> gDoomed;

void removeAndDie(int number) {
    for (const Doomed& doomed : gDoomed) {
        if (doomed.used) {
            unlink(doomed.path);
        }
    }
    std::signal(number, SIG_DFL);
    std::raise(number);
}

void handleSignals() {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        if (std::signal(number, removeAndDie) == SIG_IGN) {
            std::signal(number, SIG_IGN); // started with nohup or in the background: stay deaf
        }
    }
    std::signal(SIGXFSZ, SIG_IGN); // a file size limit then is an ordinary write error
}

void removeOnSignals(const std::string& temporary) {
    static const bool installed = (handleSignals(), true);
    (void)installed;
    for (Doomed& doomed : gDoomed) {
        if (!doomed.used && temporary.size() < MAX_PATH_BYTES) {
            std::memcpy(doomed.path, temporary.c_str(), temporary.size() + 1);
            doomed.used = true;
            return;
        }
    }
}

void forgetOnSignals(const std::string& temporary) {
    for (Doomed& doomed : gDoomed) {
        if (doomed.used && temporary == doomed.path) {
            doomed.used = false;
        }
    }
}

mode_t permissionsFor(const std::string& target) {
    struct stat present {};
    if (stat(target.c_str(), &present) == 0) {
        return present.st_mode & 0777;
    }
    const mode_t mask = umask(0); // there is no way to read it without setting it
    umask(mask);
    return 0666 & ~mask;
}

std::FILE* createBeside(const std::string& target, std::string& temporary) {
    temporary = directoryOf(target) + "/.zqx-img-XXXXXX";
    const int descriptor = mkostemp(temporary.data(), O_CLOEXEC);
    if (descriptor < 0) {
        temporary.clear();
        return nullptr;
    }
    removeOnSignals(temporary);
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

#endif

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

void OutputFile::check(const std::string& name) {
    checkTarget(name);
}

OutputFile::OutputFile(const std::string& name) : mName(name), mTarget(checkTarget(name)) {
    mStream = createBeside(mTarget, mTemporary);
    if (mStream == nullptr) {
        const int reason = errno;
        closeStream();
        throw Error(mName, "cannot be created (" + describe(reason) + ")");
    }
}

OutputFile::~OutputFile() {
    closeStream();
}

void OutputFile::closeStream() {
    if (mStream != nullptr) {
        std::fclose(mStream);
        mStream = nullptr;
    }
    if (!mTemporary.empty()) {
        removeFile(mTemporary);
        forgetOnSignals(mTemporary);
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
        closeStream();
        throw Error(mName, "could not be written (" + describe(mFailure) + "), nothing was changed");
    }
    std::error_code failure;
    fs::rename(toPath(mTemporary), toPath(mTarget), failure);
    if (failure) {
        closeStream();
        throw Error(mName, "could not be put in place (" + failure.message() + "), nothing was changed");
    }
    forgetOnSignals(mTemporary);
    mTemporary.clear();
}

} // namespace zqx::img::app
