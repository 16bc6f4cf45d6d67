// On Linux a file that lives in memory, which can be sealed; elsewhere a temporary file without a name.
#include "zqx/pictures/isolation/SharedMemory.h"

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zqx::pictures {

namespace {

[[noreturn]] void fail() {
    throw std::system_error(errno, std::generic_category());
}

#if defined(__linux__)

int create() {
    return memfd_create("zqx-img picture", MFD_CLOEXEC | MFD_ALLOW_SEALING);
}

/// Memory that shrinks under a reader would kill it, and memory that changes would make checks worthless.
void seal(int descriptor) {
    if (fcntl(descriptor, F_ADD_SEALS, F_SEAL_SEAL | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_WRITE) != 0) {
        fail();
    }
}

#else

int create() {
    std::string name = (std::filesystem::temp_directory_path() / ".zqx-img-XXXXXX").string();
    const int descriptor = mkstemp(name.data());
    if (descriptor >= 0) {
        unlink(name.c_str());
        fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    }
    return descriptor;
}

void seal(int) {
}

#endif

} // namespace

SharedMemory::SharedMemory() : mDescriptor(create()) {
    if (mDescriptor < 0) {
        fail();
    }
}

SharedMemory::~SharedMemory() {
    close(mDescriptor);
}

SharedMemory::Content SharedMemory::content() const {
    seal(mDescriptor);
    struct stat status {};
    if (fstat(mDescriptor, &status) != 0) {
        fail();
    }
    const auto bytes = static_cast<std::uint64_t>(status.st_size);
    if (bytes == 0 || bytes > std::numeric_limits<std::size_t>::max()) {
        return {};
    }
    const auto size = static_cast<std::size_t>(bytes);
    void* address = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE, mDescriptor, 0);
    if (address == MAP_FAILED) {
        fail();
    }
    return {
        std::shared_ptr<std::byte>(static_cast<std::byte*>(address), [size](std::byte* start) { munmap(start, size); }),
        size};
}

} // namespace zqx::pictures
