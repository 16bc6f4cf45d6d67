// In place of the decoder: a process that tries what a decoder that was taken over would try, and tells what came of
// it. What it is to do stands where the name of the picture would: a mode, a folder and a process, one to a line.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <sstream>
#include <string>

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <unistd.h>

#if defined(ZQX_WITH_SECCOMP)
#include <seccomp.h>
#endif

#include "isolation/Attempts.h"

#include "zqx/pictures/isolation/decoder/Confinement.h"
#include "zqx/pictures/isolation/decoder/FileBarrier.h"
#include "zqx/pictures/isolation/decoder/SystemCallFilter.h"

namespace {

using namespace zqx::pictures;
using namespace zqx::pictures::test;

void report(const std::string& line) {
    if (write(DecodeRequest::RESULT, line.data(), line.size()) < 0) {
        _exit(EXIT_FAILURE);
    }
}

/// A line: the name, a tab, and what the kernel said.
void tryOut(const Attempt& attempt) {
    errno = 0;
    const long result = attempt.call();
    report(std::string(attempt.name) + "\t" + std::to_string(result < 0 ? errno : 0) + "\n");
}

enum class Which { ALL, BY_NAME, HARMLESS };

void tryAll(const Target& target, Which which) {
    for (const Attempt& attempt : attemptsOn(target)) {
        const bool harmless = attempt.unconfined != Attempt::DEPENDS;
        if (which == Which::ALL || (harmless && (which == Which::HARMLESS || attempt.byName))) {
            tryOut(attempt);
        }
    }
}

/// Neither a death signal nor an alarm nor a signal to the group reaches it any more.
void leave() {
    prctl(PR_SET_PDEATHSIG, 0);
    setpgid(0, getppid());
    alarm(0);
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_BLOCK, &all, nullptr);
}

[[noreturn]] void stayForEver() {
    for (;;) {
        pause();
    }
}

int attack(const DecodeRequest& request) {
    std::istringstream words(request.name);
    std::string mode;
    Target target;
    std::getline(words, mode);
    std::getline(words, target.folder);
    words >> target.process;
    if (mode == "confined") {
        report(std::string("confined\t") + (confine(request) ? "0" : "1") + "\n");
        tryAll(target, Which::ALL);
    } else if (mode == "filtered") {
        report(std::string("confined\t") + (filterSystemCalls() ? "0" : "1") + "\n");
        tryAll(target, Which::ALL);
    } else if (mode == "barred") {
        report(std::string("confined\t") + (barFiles() ? "0" : "1") + "\n");
        tryAll(target, Which::BY_NAME);
    } else if (mode == "free") {
        tryAll(target, Which::HARMLESS);
    } else if (mode == "needy") {
        report(std::string("confined\t") + (confine(request) ? "0" : "1") + "\n");
        for (const Attempt& need : needs()) {
            tryOut(need);
        }
    } else if (mode == "aborting") {
        confine(request);
        std::abort();
    } else if (mode == "leaving") {
        leave();
        stayForEver();
    } else if (mode == "noticed") {
        close(open((target.folder + "/started").c_str(), O_WRONLY | O_CREAT, 0600));
        stayForEver();
    } else if (mode == "hiding") {
        leave();
        close(DecodeRequest::ALIVE);
        stayForEver();
    } else if (mode == "stopped") {
        raise(SIGSTOP);
    } else if (mode == "outliving") { // its child keeps the pipe open, from a session of its own
        if (fork() == 0) {
            setsid();
            report(std::to_string(getpid()) + "\n");
            stayForEver();
        }
    } else {
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

/// Runs a program on a system without seccomp filters, as far as it can tell.
int runWithoutFilters(char** command) {
#if defined(ZQX_WITH_SECCOMP)
    const scmp_filter_ctx filter = seccomp_init(SCMP_ACT_ALLOW);
    const scmp_arg_cmp setting{0, SCMP_CMP_EQ, PR_SET_SECCOMP, 0};
    if (seccomp_rule_add(filter, SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(seccomp), 0) != 0 ||
        seccomp_rule_add_array(filter, SCMP_ACT_ERRNO(EINVAL), SCMP_SYS(prctl), 1, &setting) != 0 ||
        seccomp_load(filter) != 0) {
        std::fputs("no filter against filters\n", stderr);
        return EXIT_FAILURE;
    }
#endif
    execv(command[0], command);
    std::perror(command[0]);
    return EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 2 && std::strcmp(argv[1], "--without-filters") == 0) {
        return runWithoutFilters(argv + 2);
    }
    const std::span<const char* const> arguments(argv, static_cast<std::size_t>(argc));
    const auto request = DecodeRequest::fromArguments(arguments.subspan(1));
    // _exit, since sanitizers look for leaks by means that are no longer there.
    _exit(request ? attack(*request) : EXIT_FAILURE);
}
