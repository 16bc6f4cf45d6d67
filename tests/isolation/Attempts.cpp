// Calls are made by their numbers: functions of the C library would do without some of them, or add others.
#include "isolation/Attempts.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <thread>

#include <fcntl.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/ipc.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <unistd.h>

#include "zqx/pictures/isolation/DecodeRequest.h"

namespace zqx::pictures::test {

namespace {

constexpr int SUCCEEDS = Attempt::SUCCEEDS;
constexpr int DEPENDS = Attempt::DEPENDS;

template <typename... Arguments>
long call(long number, Arguments... arguments) {
    return syscall(number, arguments...);
}

/// A descriptor is closed, and what matters is that there was one.
long opened(long descriptor) {
    if (descriptor >= 0) {
        close(static_cast<int>(descriptor));
    }
    return descriptor;
}

class Attempts {
public:
    explicit Attempts(const Target& target)
        : mVictim(target.folder + "/victim"), mFresh(target.folder + "/fresh"), mFolder(target.folder),
          mProcess(target.process) {}

    std::vector<Attempt> all() {
        openFiles();
        changeFiles();
        reachProcesses();
        reachTheNetwork();
        startProcesses();
        escape();
        reachTheKernel();
        return std::move(mAttempts);
    }

private:
    void add(const char* name, int unconfined, std::function<long()> attempt) {
        mAttempts.push_back({name, unconfined, false, std::move(attempt)});
    }
    void addFile(const char* name, int unconfined, std::function<long()> attempt) {
        mAttempts.push_back({name, unconfined, true, std::move(attempt)});
    }

    void addOpening(const char* name, const std::string& file, int flags, int unconfined = SUCCEEDS) {
        addFile(name, unconfined,
                [=] { return opened(call(SYS_openat, AT_FDCWD, file.c_str(), flags, mode_t{0600})); });
    }

    void openFiles() {
        addOpening("openat for reading", mVictim, O_RDONLY);
        addOpening("openat for writing", mVictim, O_WRONLY);
        addOpening("openat for both", mVictim, O_RDWR);
        addOpening("openat for reading, O_TRUNC", mVictim, O_RDONLY | O_TRUNC);
        addOpening("openat for reading, O_CREAT", mFresh, O_RDONLY | O_CREAT);
        addOpening("openat for nothing, O_CREAT", mFresh, O_ACCMODE | O_CREAT);
        addOpening("openat O_TMPFILE", mFolder, O_RDWR | O_TMPFILE, DEPENDS);
        addOpening("openat of a folder", mFolder, O_RDONLY | O_DIRECTORY);
        addOpening("openat of the password file", "/etc/passwd", O_RDONLY);
        addOpening("openat of its own memory", "/proc/self/mem", O_RDWR);
        addOpening("openat of another's memory", "/proc/" + std::to_string(mProcess) + "/mem", O_RDWR, DEPENDS);
        addOpening("openat of the program's memory", "/proc/" + std::to_string(getppid()) + "/mem", O_RDWR, DEPENDS);
        addOpening("openat of the picture anew", "/proc/self/fd/" + std::to_string(DecodeRequest::FILE), O_WRONLY);
        addOpening("openat of the terminal", "/dev/tty", O_RDWR, DEPENDS);
#if defined(SYS_open)
        addFile("open for reading, O_TRUNC", SUCCEEDS,
                [this] { return opened(call(SYS_open, mVictim.c_str(), O_RDONLY | O_TRUNC)); });
        addFile("creat", SUCCEEDS, [this] { return opened(call(SYS_creat, mFresh.c_str(), mode_t{0600})); });
#endif
#if defined(SYS_openat2)
        addFile("openat2", SUCCEEDS, [this] {
            const struct { std::uint64_t flags, mode, resolve; } how{O_RDWR, 0, 0};
            return opened(call(SYS_openat2, AT_FDCWD, mVictim.c_str(), &how, sizeof how));
        });
#endif
        add("name_to_handle_at", DEPENDS, [this] {
            struct {
                unsigned bytes;
                int type;
                char handle[128];
            } handle{sizeof handle.handle, 0, {}};
            int mount = 0;
            return call(SYS_name_to_handle_at, AT_FDCWD, mVictim.c_str(), &handle, &mount, 0);
        });
        add("open_by_handle_at", DEPENDS, [] { return call(SYS_open_by_handle_at, -1, nullptr, O_RDONLY); });
        add("memfd_create", SUCCEEDS, [] { return opened(call(SYS_memfd_create, "x", 0U)); });
        add("inotify_init1", SUCCEEDS, [] { return opened(call(SYS_inotify_init1, 0)); });
        add("fanotify_init", DEPENDS, [] { return opened(call(SYS_fanotify_init, 0U, 0U)); });
        add("getcwd", SUCCEEDS, [] {
            char folder[4096];
            return call(SYS_getcwd, folder, sizeof folder);
        });
        add("readlinkat", SUCCEEDS, [] {
            char text[256];
            return call(SYS_readlinkat, AT_FDCWD, "/proc/self/exe", text, sizeof text);
        });
        add("faccessat", SUCCEEDS, [this] { return call(SYS_faccessat, AT_FDCWD, mVictim.c_str(), R_OK); });
        add("stat by name", SUCCEEDS, [this] {
            struct stat status {};
            return call(SYS_newfstatat, AT_FDCWD, mVictim.c_str(), &status, 0);
        });
    }

    void changeFiles() {
        addFile("mkdirat", SUCCEEDS, [this] { return call(SYS_mkdirat, AT_FDCWD, (mFresh + ".d").c_str(), 0700U); });
        addFile("unlinkat of a folder", SUCCEEDS,
                [this] { return call(SYS_unlinkat, AT_FDCWD, (mFresh + ".d").c_str(), AT_REMOVEDIR); });
        addFile("mknodat", SUCCEEDS,
                [this] { return call(SYS_mknodat, AT_FDCWD, (mFresh + ".f").c_str(), S_IFIFO | 0600U, 0UL); });
        addFile("symlinkat", SUCCEEDS, [this] { return call(SYS_symlinkat, "x", AT_FDCWD, (mFresh + ".s").c_str()); });
        addFile("linkat", SUCCEEDS,
                [this] { return call(SYS_linkat, AT_FDCWD, mVictim.c_str(), AT_FDCWD, (mFresh + ".l").c_str(), 0); });
        addFile("renameat2", SUCCEEDS, [this] {
            return call(SYS_renameat2, AT_FDCWD, (mFresh + ".l").c_str(), AT_FDCWD, (mFresh + ".m").c_str(), 0U);
        });
        addFile("unlinkat", SUCCEEDS, [this] { return call(SYS_unlinkat, AT_FDCWD, (mFresh + ".m").c_str(), 0); });
        addFile("truncate", SUCCEEDS, [this] { return call(SYS_truncate, mVictim.c_str(), long{0}); });
        add("ftruncate of the result", SUCCEEDS,
            [] { return call(SYS_ftruncate, DecodeRequest::RESULT, long{1} << 20); });
        add("fallocate of the result", SUCCEEDS,
            [] { return call(SYS_fallocate, DecodeRequest::RESULT, 0, long{0}, long{1} << 20); });
        add("fcntl F_ADD_SEALS", DEPENDS, [] { return call(SYS_fcntl, DecodeRequest::RESULT, 1033, 1); });
        add("fcntl F_SETOWN", DEPENDS, [this] { return call(SYS_fcntl, DecodeRequest::RESULT, F_SETOWN, mProcess); });
        add("fcntl F_DUPFD", SUCCEEDS, [] { return opened(call(SYS_fcntl, DecodeRequest::FILE, F_DUPFD, 10)); });
        add("flock", SUCCEEDS, [] { return call(SYS_flock, DecodeRequest::FILE, 8 /* LOCK_UN */); });
        add("fchmod of the picture", SUCCEEDS, [] { return call(SYS_fchmod, DecodeRequest::FILE, 0600U); });
        add("fchmodat", SUCCEEDS, [this] { return call(SYS_fchmodat, AT_FDCWD, mVictim.c_str(), 0600U); });
        add("fchown of the picture", SUCCEEDS,
            [] { return call(SYS_fchown, DecodeRequest::FILE, getuid(), getgid()); });
        add("fchownat", SUCCEEDS,
            [this] { return call(SYS_fchownat, AT_FDCWD, mVictim.c_str(), getuid(), getgid(), 0); });
        add("utimensat of the picture", SUCCEEDS,
            [] { return call(SYS_utimensat, DecodeRequest::FILE, nullptr, nullptr, 0); });
        add("utimensat", SUCCEEDS, [this] { return call(SYS_utimensat, AT_FDCWD, mVictim.c_str(), nullptr, 0); });
#if defined(SYS_utime)
        add("utime", SUCCEEDS, [this] { return call(SYS_utime, mVictim.c_str(), nullptr); });
        add("utimes", SUCCEEDS, [this] { return call(SYS_utimes, mVictim.c_str(), nullptr); });
        add("futimesat", SUCCEEDS, [this] { return call(SYS_futimesat, AT_FDCWD, mVictim.c_str(), nullptr); });
#endif
        add("fsetxattr", DEPENDS, [] { return call(SYS_fsetxattr, DecodeRequest::FILE, "user.x", "y", 1UL, 0); });
        add("setxattr", DEPENDS, [this] { return call(SYS_setxattr, mVictim.c_str(), "user.x", "y", 1UL, 0); });
        add("ioctl", SUCCEEDS, [] {
            int count = 0;
            return call(SYS_ioctl, DecodeRequest::FILE, FIONREAD, &count);
        });
        add("copy_file_range", DEPENDS, [] {
            return call(SYS_copy_file_range, DecodeRequest::FILE, nullptr, DecodeRequest::RESULT, nullptr, 1UL, 0U);
        });
        add("sendfile", SUCCEEDS, [] {
            off_t start = 0;
            return call(SYS_sendfile, DecodeRequest::RESULT, DecodeRequest::FILE, &start, 0UL);
        });
    }

    void reachProcesses() {
        add("kill of the program", SUCCEEDS, [] { return call(SYS_kill, getppid(), 0); });
        add("kill of another", SUCCEEDS, [this] { return call(SYS_kill, mProcess, SIGCONT); });
        add("kill of all", DEPENDS, [] { return call(SYS_kill, -1, 0); });
        add("tkill of another", SUCCEEDS, [this] { return call(SYS_tkill, mProcess, SIGCONT); });
        add("tgkill of another", SUCCEEDS, [this] { return call(SYS_tgkill, mProcess, mProcess, SIGCONT); });
        add("rt_sigqueueinfo to another", SUCCEEDS, [this] {
            siginfo_t info{};
            info.si_code = SI_QUEUE;
            return call(SYS_rt_sigqueueinfo, mProcess, SIGCONT, &info);
        });
        add("rt_tgsigqueueinfo to another", SUCCEEDS, [this] {
            siginfo_t info{};
            info.si_code = SI_QUEUE;
            return call(SYS_rt_tgsigqueueinfo, mProcess, mProcess, SIGCONT, &info);
        });
#if defined(SYS_pidfd_open)
        add("pidfd_open", SUCCEEDS, [this] { return opened(call(SYS_pidfd_open, mProcess, 0U)); });
        add("pidfd_send_signal", EBADF, [] { return call(SYS_pidfd_send_signal, -1, SIGCONT, nullptr, 0U); });
        add("pidfd_getfd", EBADF, [] { return call(SYS_pidfd_getfd, -1, 0, 0U); });
#endif
        add("prlimit64 of another", SUCCEEDS, [this] {
            const rlimit limit{0, 0};
            return call(SYS_prlimit64, mProcess, RLIMIT_CORE, &limit, nullptr);
        });
        add("prlimit64 that asks another", SUCCEEDS, [this] {
            rlimit limit{};
            return call(SYS_prlimit64, mProcess, RLIMIT_CORE, nullptr, &limit);
        });
        add("prlimit64 of its own", SUCCEEDS, [] {
            const rlimit limit{0, 0};
            return call(SYS_prlimit64, 0, RLIMIT_CORE, &limit, nullptr);
        });
        add("setpriority of another", SUCCEEDS, [this] { return call(SYS_setpriority, PRIO_PROCESS, mProcess, 19); });
        add("sched_setaffinity of another", SUCCEEDS, [this] {
            cpu_set_t set;
            const long size = call(SYS_sched_getaffinity, mProcess, sizeof set, &set);
            return size < 0 ? size : call(SYS_sched_setaffinity, mProcess, static_cast<unsigned long>(size), &set);
        });
        add("sched_setscheduler of another", SUCCEEDS, [this] {
            const sched_param parameters{};
            return call(SYS_sched_setscheduler, mProcess, SCHED_BATCH, &parameters);
        });
        add("sched_setparam of another", SUCCEEDS, [this] {
            const sched_param parameters{};
            return call(SYS_sched_setparam, mProcess, &parameters);
        });
        add("sched_setattr of another", EINVAL, [this] { return call(SYS_sched_setattr, mProcess, nullptr, 0U); });
        add("ioprio_set of another", SUCCEEDS, [this] { return call(SYS_ioprio_set, 1, mProcess, 3 << 13); });
        add("ptrace", DEPENDS, [this] { return call(SYS_ptrace, 0x4206L /* seize */, mProcess, nullptr, nullptr); });
        add("process_vm_readv", DEPENDS,
            [this] { return call(SYS_process_vm_readv, mProcess, nullptr, 0UL, nullptr, 0UL, 0UL); });
        add("process_vm_writev", DEPENDS,
            [this] { return call(SYS_process_vm_writev, mProcess, nullptr, 0UL, nullptr, 0UL, 0UL); });
        add("kcmp", DEPENDS, [this] { return call(SYS_kcmp, getpid(), mProcess, 0, 0UL, 0UL); });
        add("get_robust_list of another", DEPENDS, [this] {
            void* head = nullptr;
            std::size_t length = 0;
            return call(SYS_get_robust_list, mProcess, &head, &length);
        });
        add("migrate_pages", DEPENDS, [this] { return call(SYS_migrate_pages, mProcess, 0UL, nullptr, nullptr); });
        add("move_pages", DEPENDS,
            [this] { return call(SYS_move_pages, mProcess, 0UL, nullptr, nullptr, nullptr, 0); });
        add("shmget", DEPENDS, [] {
            const long segment = call(SYS_shmget, IPC_PRIVATE, 4096UL, 0600);
            return segment < 0 ? segment : call(SYS_shmctl, segment, IPC_RMID, nullptr);
        });
        add("semget", DEPENDS, [] {
            const long set = call(SYS_semget, IPC_PRIVATE, 1, 0600);
            return set < 0 ? set : call(SYS_semctl, set, 0, IPC_RMID, nullptr);
        });
        add("msgget", DEPENDS, [] {
            const long queue = call(SYS_msgget, IPC_PRIVATE, 0600);
            return queue < 0 ? queue : call(SYS_msgctl, queue, IPC_RMID, nullptr);
        });
        add("mq_open", DEPENDS, [] { return opened(call(SYS_mq_open, "zqx-no-such-queue", O_RDONLY, 0600, nullptr)); });
        add("mq_unlink", DEPENDS, [] { return call(SYS_mq_unlink, "zqx-no-such-queue"); });
    }

    void reachTheNetwork() {
        add("socket of the Internet", SUCCEEDS, [] { return opened(call(SYS_socket, AF_INET, SOCK_STREAM, 0)); });
        add("socket of the system", SUCCEEDS, [] { return opened(call(SYS_socket, AF_UNIX, SOCK_STREAM, 0)); });
        add("socket of the kernel", SUCCEEDS, [] { return opened(call(SYS_socket, AF_NETLINK, SOCK_RAW, 0)); });
        add("socketpair", SUCCEEDS, [] {
            int ends[2];
            const long result = call(SYS_socketpair, AF_UNIX, SOCK_STREAM, 0, ends);
            return result < 0 ? result : opened(ends[0]) + opened(ends[1]);
        });
#if !defined(__SANITIZE_ADDRESS__) // which needs it, and is not what is shipped
        add("pipe2", SUCCEEDS, [] {
            int ends[2];
            const long result = call(SYS_pipe2, ends, 0);
            return result < 0 ? result : opened(ends[0]) + opened(ends[1]);
        });
#endif
        add("connect", EBADF, [] { return call(SYS_connect, -1, nullptr, 0U); });
        add("bind", EBADF, [] { return call(SYS_bind, -1, nullptr, 0U); });
        add("sendto", EBADF, [] { return call(SYS_sendto, -1, nullptr, 0UL, 0, nullptr, 0U); });
        add("recvmsg", EBADF, [] { return call(SYS_recvmsg, -1, nullptr, 0); });
        add("accept4", EBADF, [] { return call(SYS_accept4, -1, nullptr, nullptr, 0); });
    }

    void startProcesses() {
#if defined(SYS_fork)
        add("fork", SUCCEEDS, [] { return getChild(call(SYS_fork)); });
#endif
        add("clone of a process", SUCCEEDS,
            [] { return getChild(call(SYS_clone, long{SIGCHLD}, nullptr, nullptr, nullptr, 0L)); });
#if defined(SYS_clone3)
        add("clone3", EINVAL, [] { return call(SYS_clone3, nullptr, 0UL); });
#endif
        add("execve", ENOENT, [] {
            char* const none[] = {nullptr};
            return call(SYS_execve, "/no/such/program", none, none);
        });
        add("execveat", ENOENT, [] {
            char* const none[] = {nullptr};
            return call(SYS_execveat, AT_FDCWD, "/no/such/program", none, none, 0);
        });
        add("memory to be executed", SUCCEEDS, [] {
            return call(SYS_mmap, nullptr, 4096UL, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0L) == -1
                       ? -1L
                       : 0L;
        });
        add("memory that becomes executable", SUCCEEDS, [] {
            const long page =
                call(SYS_mmap, nullptr, 4096UL, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0L);
            return page == -1 ? 0 : call(SYS_mprotect, page, 4096UL, PROT_READ | PROT_EXEC);
        });
    }

    void escape() {
        add("setpgid", SUCCEEDS, [] { return call(SYS_setpgid, 0, 0); });
        add("setsid", EPERM, [] { return call(SYS_setsid); }); // it leads a group
        add("alarm that is put off", SUCCEEDS, [] {
            const itimerval never{};
            return call(SYS_setitimer, ITIMER_REAL, &never, nullptr);
        });
#if defined(SYS_alarm)
        add("alarm", SUCCEEDS, [] { return call(SYS_alarm, 0U); });
#endif
        add("timer_create", SUCCEEDS, [] {
            int timer = 0;
            return call(SYS_timer_create, CLOCK_MONOTONIC, nullptr, &timer);
        });
        add("prctl of the death signal", SUCCEEDS, [] { return call(SYS_prctl, PR_SET_PDEATHSIG, 0L, 0L, 0L, 0L); });
        add("prctl PR_SET_DUMPABLE", SUCCEEDS, [] { return call(SYS_prctl, PR_SET_DUMPABLE, 1L, 0L, 0L, 0L); });
        add("prctl PR_SET_NAME", SUCCEEDS, [] { return call(SYS_prctl, PR_SET_NAME, "zqx-img", 0L, 0L, 0L); });
        add("prctl PR_SET_PTRACER", DEPENDS, [] { return call(SYS_prctl, 0x59616D61L, -1L, 0L, 0L, 0L); });
        add("setrlimit", SUCCEEDS, [] {
            const rlimit limit{0, 0};
            return call(SYS_setrlimit, RLIMIT_CORE, &limit);
        });
        add("setuid", SUCCEEDS, [] { return call(SYS_setuid, getuid()); });
        add("setresuid", SUCCEEDS, [] { return call(SYS_setresuid, -1, -1, -1); });
        add("setgroups", DEPENDS, [] { return call(SYS_setgroups, 0UL, nullptr); });
        add("capset", EFAULT, [] { return call(SYS_capset, nullptr, nullptr); });
        add("chdir", SUCCEEDS, [] { return call(SYS_chdir, "/"); });
        add("chroot", DEPENDS, [] { return call(SYS_chroot, "/no/such/folder"); });
        add("unshare", DEPENDS, [] { return call(SYS_unshare, 0x10000000L /* user namespace */); });
        add("setns", EBADF, [] { return call(SYS_setns, -1, 0); });
        add("personality", SUCCEEDS, [] { return call(SYS_personality, 0xFFFFFFFFUL); });
        add("another filter", EINVAL, [] { return call(SYS_seccomp, 99U, 0U, nullptr); });
        add("umask", SUCCEEDS, [] { return call(SYS_umask, 077U); });
        add("dup", SUCCEEDS, [] { return opened(call(SYS_dup, DecodeRequest::FILE)); });
    }

    void reachTheKernel() {
        add("mount", DEPENDS, [] { return call(SYS_mount, nullptr, "/no/such/folder", nullptr, 0UL, nullptr); });
        add("umount2", DEPENDS, [] { return call(SYS_umount2, "/no/such/folder", 0); });
        add("pivot_root", DEPENDS, [] { return call(SYS_pivot_root, "/no", "/no"); });
#if defined(SYS_fsopen)
        add("fsopen", DEPENDS, [] { return opened(call(SYS_fsopen, "tmpfs", 0U)); });
        add("fsmount", DEPENDS, [] { return call(SYS_fsmount, -1, 0U, 0U); });
        add("open_tree", DEPENDS, [] { return opened(call(SYS_open_tree, AT_FDCWD, "/", 0U)); });
        add("move_mount", DEPENDS, [] { return call(SYS_move_mount, -1, "", -1, "", 0U); });
#endif
        add("bpf", DEPENDS, [] { return call(SYS_bpf, 0, nullptr, 0U); });
        add("perf_event_open", DEPENDS, [] { return call(SYS_perf_event_open, nullptr, 0, -1, -1, 0UL); });
        add("userfaultfd", DEPENDS, [] { return opened(call(SYS_userfaultfd, 0)); });
#if defined(SYS_io_uring_setup)
        add("io_uring_setup", DEPENDS, [] { return call(SYS_io_uring_setup, 1U, nullptr); });
        add("io_uring_enter", DEPENDS, [] { return call(SYS_io_uring_enter, -1, 0U, 0U, 0U, nullptr, 0UL); });
#endif
        add("keyctl", DEPENDS, [] { return call(SYS_keyctl, 0, -3L, 0L, 0L, 0L); });
        add("add_key", DEPENDS, [] { return call(SYS_add_key, "user", "zqx", nullptr, 0UL, 0); });
        add("request_key", DEPENDS, [] { return call(SYS_request_key, "user", "zqx", nullptr, 0); });
        add("init_module", DEPENDS, [] { return call(SYS_init_module, nullptr, 0UL, ""); });
        add("kexec_load", DEPENDS, [] { return call(SYS_kexec_load, 0UL, 0UL, nullptr, ~0UL); });
        add("clock_settime", DEPENDS, [] { return call(SYS_clock_settime, 99, nullptr); });
        add("sethostname", DEPENDS, [] { return call(SYS_sethostname, nullptr, 1UL); });
        add("swapoff", DEPENDS, [] { return call(SYS_swapoff, "/no/such/file"); });
        add("reboot", DEPENDS, [] { return call(SYS_reboot, 0, 0, 0U, nullptr); });
        add("syslog", DEPENDS, [] { return call(SYS_syslog, 10, nullptr, 0); });
        add("acct", DEPENDS, [] { return call(SYS_acct, "/no/such/file"); });
        add("quotactl", DEPENDS, [] { return call(SYS_quotactl, 0, nullptr, 0, nullptr); });
        add("eventfd2", SUCCEEDS, [] { return opened(call(SYS_eventfd2, 0U, 0)); });
        add("epoll_create1", SUCCEEDS, [] { return opened(call(SYS_epoll_create1, 0)); });
        add("a call that does not exist", ENOSYS, [] { return call(100'000); });
    }

    static long getChild(long process) {
        if (process == 0) {
            _exit(EXIT_SUCCESS);
        }
        return process;
    }

    const std::string mVictim;
    const std::string mFresh;
    const std::string mFolder;
    const int mProcess;
    std::vector<Attempt> mAttempts;
};

} // namespace

std::vector<Attempt> attemptsOn(const Target& target) {
    static Attempts attempts(target); // what is tried looks at it
    return attempts.all();
}

std::vector<Attempt> needs() {
    const auto need = [](const char* name, std::function<long()> call) {
        return Attempt{name, Attempt::SUCCEEDS, false, std::move(call)};
    };
    return {
        need("reading the picture",
             [] {
                 char byte = 0;
                 return static_cast<long>(pread(DecodeRequest::FILE, &byte, 1, 0)) - 1;
             }),
        need("the size of the picture",
             [] {
                 struct stat status {};
                 return static_cast<long>(fstat(DecodeRequest::FILE, &status));
             }),
        need("writing the result",
             [] { return static_cast<long>(pwrite(DecodeRequest::RESULT, "x", 1, 1 << 20)) - 1; }),
        need("memory",
             [] {
                 constexpr std::size_t MUCH = std::size_t{64} << 20;
                 void* volatile memory = std::malloc(MUCH);
                 std::free(memory);
                 return memory == nullptr ? -1L : 0L;
             }),
        need("threads",
             [] {
                 long answer = -1;
                 std::thread([&] { answer = 0; }).join();
                 return answer;
             }),
        need("time", [] { return std::time(nullptr) > 0 ? 0L : -1L; }),
        need("its own limits",
             [] {
                 rlimit limit{};
                 return static_cast<long>(getrlimit(RLIMIT_AS, &limit));
             }),
    };
}

} // namespace zqx::pictures::test
