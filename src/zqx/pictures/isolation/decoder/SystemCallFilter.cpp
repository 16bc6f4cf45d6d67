// A seccomp filter (seccomp(2)) that names what is allowed. All files are open by the time it holds: the picture for
// reading and the memory for the result. Refused calls fail and do not kill, since other versions of the C library and
// of the decoders' libraries make calls that are not listed here, whose failure they live with.
#include "zqx/pictures/isolation/decoder/SystemCallFilter.h"

#if defined(ZQX_WITH_SECCOMP)

#include <cerrno>
#include <cstdint>
#include <initializer_list>
#include <memory>

#include <fcntl.h>
#include <sched.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <unistd.h>

namespace zqx::pictures {

namespace {

/// Calls that reach nothing but this process, its memory and the files that it has open.
constexpr const char* ALLOWED[] = {
    // Memory; see below for what may not be executed.
    "brk",
    "madvise",
    "mremap",
    "munmap",
    // Open files.
    "_llseek",
    "close",
    "fadvise64",
    "fstat",
    "lseek",
    "pread64",
    "pwrite64",
    "read",
    "readv",
    "write",
    "writev",
    // Threads; see below for starting them.
    "exit",
    "exit_group",
    "futex",
    "gettid",
    "rseq",
    "sched_getaffinity",
    "sched_yield",
    "set_robust_list",
    "set_tid_address",
    // Signals to itself; see below for sending them.
    "restart_syscall",
    "rt_sigaction",
    "rt_sigprocmask",
    "rt_sigreturn",
    "sigaltstack",
#if defined(__SANITIZE_ADDRESS__)
    "pipe2", // by which the sanitizer finds out whether memory can be read
#endif
    // Time, chance, and what this process is.
    "clock_getres",
    "clock_gettime",
    "clock_nanosleep",
    "getcpu",
    "getegid",
    "geteuid",
    "getgid",
    "getpid",
    "getppid",
    "getrandom",
    "getrusage",
    "gettimeofday",
    "getuid",
    "nanosleep",
    "sysinfo",
    "time",
    "times",
    "uname",
};

/// True of arguments whose bits under a mask have a value.
scmp_arg_cmp bits(unsigned argument, std::uint64_t mask, std::uint64_t value) {
    return {argument, SCMP_CMP_MASKED_EQ, mask, value};
}

scmp_arg_cmp equal(unsigned argument, std::uint64_t value) {
    return {argument, SCMP_CMP_EQ, value, 0};
}

class Filter {
public:
    Filter() : mContext(seccomp_init(SCMP_ACT_ERRNO(EPERM)), seccomp_release) {}

    explicit operator bool() const { return mContext && !mFailed; }

    /// @param conditions that all have to hold; none: any call
    void allow(const char* name, std::initializer_list<scmp_arg_cmp> conditions = {}) {
        add(SCMP_ACT_ALLOW, name, conditions);
    }

    /// Fails as on a system that does not have the call, which the C library knows how to do without.
    void hide(const char* name) { add(SCMP_ACT_ERRNO(ENOSYS), name, {}); }

    /// For all threads at once, should a library have started some.
    bool load() {
        mFailed |= seccomp_attr_set(mContext.get(), SCMP_FLTATR_CTL_TSYNC, 1) != 0;
        return !mFailed && seccomp_load(mContext.get()) == 0;
    }

private:
    void add(std::uint32_t action, const char* name, std::initializer_list<scmp_arg_cmp> conditions) {
        const int number = seccomp_syscall_resolve_name(name);
        if (number >= 0) { // others are not of this processor
            mFailed |= seccomp_rule_add_array(mContext.get(), action, number, static_cast<unsigned>(conditions.size()),
                                              conditions.begin()) != 0;
        }
    }

    std::unique_ptr<void, void (*)(scmp_filter_ctx)> mContext;
    bool mFailed = false;
};

/// Threads, but no processes and none of the kernel's namespaces, which open far more of it.
void allowThreads(Filter& filter) {
    constexpr std::uint64_t NAMESPACES =
        CLONE_NEWNS | CLONE_NEWCGROUP | CLONE_NEWUTS | CLONE_NEWIPC | CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNET;
    constexpr std::uint64_t OTHERS = CLONE_VFORK | CLONE_PTRACE | CLONE_PARENT | CLONE_PIDFD | CLONE_UNTRACED;
    constexpr std::uint64_t SHARED = CLONE_THREAD | CLONE_SIGHAND | CLONE_VM | CLONE_FS | CLONE_FILES;
    filter.allow("clone", {bits(0, NAMESPACES | OTHERS | SHARED, SHARED)});
    filter.hide("clone3"); // whose arguments are in memory, where no filter can look
}

void allowMemory(Filter& filter) {
    for (const char* name : {"mmap", "mmap2", "mprotect"}) {
        filter.allow(name, {bits(2, PROT_EXEC, 0)});
    }
}

/// What the C library asks of an open file or of its own process, through calls that can also name others.
void allowSelf(Filter& filter) {
    filter.allow("newfstatat", {bits(3, AT_EMPTY_PATH, AT_EMPTY_PATH)});
    filter.allow("statx", {bits(2, AT_EMPTY_PATH, AT_EMPTY_PATH)});
    for (const int command : {F_GETFD, F_SETFD, F_GETFL}) {
        filter.allow("fcntl", {equal(1, static_cast<std::uint64_t>(command))});
    }
    filter.allow("tgkill", {equal(0, static_cast<std::uint64_t>(getpid()))}); // abort()
    filter.allow("prlimit64", {equal(0, 0), equal(2, 0)});                    // getrlimit()
    filter.allow("getrlimit");
}

} // namespace

bool filterSystemCalls() {
    Filter filter;
    if (!filter) {
        return false;
    }
    for (const char* name : ALLOWED) {
        filter.allow(name);
    }
    allowMemory(filter);
    allowThreads(filter);
    allowSelf(filter);
    return filter.load();
}

} // namespace zqx::pictures

#else

namespace zqx::pictures {

bool filterSystemCalls() {
    return false;
}

} // namespace zqx::pictures

#endif
