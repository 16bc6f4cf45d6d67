// Limits that the system keeps for us. A decoder that is taken over finds nothing to write to, nobody to talk to and
// nothing to start.
#include "zqx/pictures/isolation/decoder/Confinement.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <memory>
#include <system_error>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#if defined(__linux__)
#include <sys/prctl.h>
#endif
#if defined(ZQX_WITH_SECCOMP)
#include <sched.h>
#include <seccomp.h>
#endif

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
    constexpr int FIRST = DecodeRequest::ALIVE + 1;
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

void giveUpRights() {
#if defined(__linux__)
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) {
        fail(errno);
    }
#endif
}

#if defined(ZQX_WITH_SECCOMP)

/// System calls that no decoder makes and everybody who has taken one over wants. A list of what is allowed would be
/// shorter to exploit, but every other version of the C library or of FreeImage's twenty libraries would break it.
constexpr const char* FORBIDDEN[] = {
    "accept",
    "accept4",
    "add_key",
    "bind",
    "bpf",
    "chmod",
    "chown",
    "chroot",
    "connect",
    "creat",
    "execve",
    "execveat",
    "fchmod",
    "fchmodat",
    "fchmodat2",
    "fchown",
    "fchownat",
    "fork",
    "fsetxattr",
    "init_module",
    "finit_module",
    "io_uring_enter",
    "io_uring_setup",
    "ioctl",
    "kcmp",
    "kexec_load",
    "keyctl",
    "kill",
    "lchown",
    "link",
    "linkat",
    "listen",
    "lsetxattr",
    "mkdir",
    "mkdirat",
    "mknod",
    "mknodat",
    "mount",
    "name_to_handle_at",
    "open_by_handle_at",
    "pidfd_getfd",
    "pidfd_open",
    "pidfd_send_signal",
    "perf_event_open",
    "pivot_root",
    "process_vm_readv",
    "process_vm_writev",
    "ptrace",
    "recvfrom",
    "recvmsg",
    "rename",
    "renameat",
    "renameat2",
    "request_key",
    "rmdir",
    "sendmmsg",
    "sendmsg",
    "sendto",
    "setns",
    "setxattr",
    "socket",
    "socketpair",
    "symlink",
    "symlinkat",
    "tkill",
    "truncate",
    "umount2",
    "unlink",
    "unlinkat",
    "unshare",
    "userfaultfd",
    "utimensat",
    "vfork",
};

/// @param conditions all of which an argument of the call has to meet; none: any call
void forbid(scmp_filter_ctx filter, const char* name, int error, std::initializer_list<scmp_arg_cmp> conditions = {}) {
    const int number = seccomp_syscall_resolve_name(name);
    if (number != __NR_SCMP_ERROR) { // not every system has all
        seccomp_rule_add_array(filter, SCMP_ACT_ERRNO(static_cast<unsigned>(error)), number,
                               static_cast<unsigned>(conditions.size()), conditions.begin());
    }
}

void forbidSystemCalls() {
    const std::unique_ptr<void, void (*)(scmp_filter_ctx)> filter(seccomp_init(SCMP_ACT_ALLOW), seccomp_release);
    if (!filter) {
        fail(ENOMEM);
    }
    for (const char* name : FORBIDDEN) {
        forbid(filter.get(), name, EPERM);
    }
    // Files are opened for reading only; threads may be started, processes may not.
    for (const std::uint64_t mode : {O_WRONLY, O_RDWR}) {
        forbid(filter.get(), "open", EPERM, {{1, SCMP_CMP_MASKED_EQ, O_ACCMODE, mode}});
        forbid(filter.get(), "openat", EPERM, {{2, SCMP_CMP_MASKED_EQ, O_ACCMODE, mode}});
    }
    forbid(filter.get(), "clone", EPERM, {{0, SCMP_CMP_MASKED_EQ, CLONE_THREAD, 0}});
    // Their arguments are in memory, where a filter cannot look. The C library knows what to do without them.
    forbid(filter.get(), "clone3", ENOSYS);
    forbid(filter.get(), "openat2", ENOSYS);
    seccomp_load(filter.get()); // refused by old and by restricted systems: the other limits hold there
}

#else

void forbidSystemCalls() {
}

#endif

} // namespace

void confine(const DecodeRequest& request) {
    dieWithParent(request.parent);
    closeOthers();
    giveUpRights();
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
    forbidSystemCalls();
}

} // namespace zqx::pictures
