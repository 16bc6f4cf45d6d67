// Limits that the system keeps for us. A decoder that is taken over finds nothing to write to, nobody to talk to and
// nothing to start.
#include "zqx/pictures/isolation/decoder/Confinement.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <system_error>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#if defined(__linux__)
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#endif

#include "zqx/pictures/isolation/decoder/FileBarrier.h"
#include "zqx/pictures/isolation/decoder/SystemCallFilter.h"

namespace zqx::pictures {

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool SHADOW_MEMORY = true; // of terabytes, reserved but not used
#elif defined(__has_feature)
constexpr bool SHADOW_MEMORY = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
constexpr bool SHADOW_MEMORY = false;
#endif

[[noreturn]] void fail(int reason) {
    throw std::system_error(reason, std::generic_category());
}

/// Limits that are stricter already stay.
/// @param grace how much later the system stops asking and kills
template <typename Resource>
void limit(Resource resource, std::uint64_t value, std::uint64_t grace = 0) {
    rlimit limits{};
    if (getrlimit(resource, &limits) != 0) {
        fail(errno);
    }
    limits.rlim_max = std::min(limits.rlim_max, static_cast<rlim_t>(value + grace));
    limits.rlim_cur = std::min({limits.rlim_cur, limits.rlim_max, static_cast<rlim_t>(value)});
    if (setrlimit(resource, &limits) != 0) {
        fail(errno);
    }
}

std::uint64_t processors() {
    return static_cast<std::uint64_t>(std::max(sysconf(_SC_NPROCESSORS_ONLN), 1L));
}

/// Bytes of address space that the libraries take, before there is any picture.
std::uint64_t addressSpaceInUse() {
    unsigned long long pages = 0;
    if (std::FILE* file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%llu", &pages) != 1) {
            pages = 0;
        }
        std::fclose(file);
    }
    return pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

void dieWithParent(std::uint64_t parent) {
#if defined(__linux__)
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (static_cast<std::uint64_t>(getppid()) != parent) { // which died before we asked
        std::_Exit(EXIT_FAILURE);
    }
#else
    (void)parent;
#endif
}

/// Other threads of the program have files open, too.
void closeOthers() {
    constexpr int MANY = 65536;
    constexpr int FIRST = DecodeRequest::LAST + 1;
#if defined(__GLIBC__)
#if __GLIBC_PREREQ(2, 34)
    closefrom(FIRST);
    return;
#endif
#endif
    const long count = std::min<long>(sysconf(_SC_OPEN_MAX), MANY);
    for (int number = FIRST; number < count; ++number) {
        close(number);
    }
}

/// Also of an administrator: what is open needs no rights.
void giveUpRights() {
#if defined(__linux__)
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) {
        fail(errno);
    }
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    const __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3]{};
    if (syscall(SYS_capset, &header, none) != 0) {
        fail(errno);
    }
#endif
}

/// What the C library would open later.
void readSystemFiles() {
    tzset();
}

} // namespace

bool confine(const DecodeRequest& request) {
    dieWithParent(request.parent);
    closeOthers();
    giveUpRights();
    readSystemFiles();
    constexpr std::uint64_t FILES = 32;
    constexpr std::uint64_t ROOM_FOR_METADATA = std::uint64_t{256} << 20U;
    constexpr std::uint64_t LARGEST_PIXEL = 16;                                     // bytes
    const std::uint64_t memory = std::min(request.memory, std::uint64_t{1} << 62U); // leaves room for sums
    if (!SHADOW_MEMORY) {
        limit(RLIMIT_AS, memory + addressSpaceInUse());
    }
    const std::uint64_t seconds = request.milliseconds / 1000 + 1;
    limit(RLIMIT_CPU, (seconds + 1) * processors(), 1); // some decoders use several threads
    alarm(static_cast<unsigned>(std::min<std::uint64_t>(seconds + 1, 1'000'000'000))); // for when nobody watches
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_NOFILE, FILES);
    limit(RLIMIT_FSIZE, std::min(memory / LARGEST_PIXEL, request.limits.pixels) * LARGEST_PIXEL + ROOM_FOR_METADATA);
    barFiles();
    return filterSystemCalls();
}

} // namespace zqx::pictures
