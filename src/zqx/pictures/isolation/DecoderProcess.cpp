// POSIX processes. A pipe that the child holds open tells its end, which can be waited for with a time limit. The child
// may have been taken over: nothing here waits for it without a bound, or believes that it is where it was put.
#include "zqx/pictures/isolation/DecoderProcess.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/isolation/ProgramPath.h"

#if !defined(_GNU_SOURCE)
extern char** environ;
#endif

namespace zqx::pictures {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr const char* DECODER = "zqx-img-decoder";

void check(int failure) {
    if (failure != 0) {
        throw std::system_error(failure, std::generic_category());
    }
}

class Descriptor {
public:
    explicit Descriptor(int number) : mNumber(number) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { reset(); }

    int get() const { return mNumber; }
    void reset() {
        if (mNumber >= 0) {
            close(mNumber);
        }
        mNumber = -1;
    }

private:
    int mNumber;
};

/// The two ends, which other processes that are started meanwhile do not get.
struct Pipe {
    Pipe() : Pipe(open()) {}

    Descriptor reading;
    Descriptor writing;

private:
    struct Ends {
        int numbers[2];
    };
    explicit Pipe(Ends ends) : reading(ends.numbers[0]), writing(ends.numbers[1]) {}

    static Ends open() {
        Ends ends{};
#if defined(__linux__)
        check(pipe2(ends.numbers, O_CLOEXEC) == 0 ? 0 : errno);
#else
        check(pipe(ends.numbers) == 0 ? 0 : errno);
        for (const int number : ends.numbers) {
            fcntl(number, F_SETFD, FD_CLOEXEC);
        }
#endif
        return ends;
    }
};

class FileActions {
public:
    FileActions() { check(posix_spawn_file_actions_init(&mActions)); }
    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;
    ~FileActions() { posix_spawn_file_actions_destroy(&mActions); }

    void open(int number, int flags) {
        check(posix_spawn_file_actions_addopen(&mActions, number, "/dev/null", flags, 0));
    }
    void pass(int from, int to) { check(posix_spawn_file_actions_adddup2(&mActions, from, to)); }
    const posix_spawn_file_actions_t* get() const { return &mActions; }

private:
    posix_spawn_file_actions_t mActions;
};

/// No signal blocked or ignored, whatever this program does with them, and a process group of its own: a Ctrl-C is for
/// this program, which decides what becomes of its children.
class Attributes {
public:
    Attributes() {
        check(posix_spawnattr_init(&mAttributes));
        sigset_t none;
        sigemptyset(&none);
        sigset_t all;
        sigfillset(&all);
        sigdelset(&all, SIGKILL);
        sigdelset(&all, SIGSTOP);
        posix_spawnattr_setsigmask(&mAttributes, &none);
        posix_spawnattr_setsigdefault(&mAttributes, &all);
        posix_spawnattr_setpgroup(&mAttributes, 0);
        posix_spawnattr_setflags(&mAttributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETPGROUP);
    }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;
    ~Attributes() { posix_spawnattr_destroy(&mAttributes); }

    const posix_spawnattr_t* get() const { return &mAttributes; }

private:
    posix_spawnattr_t mAttributes;
};

/// This program's own environment, but decoders compute on one thread: there may be many of them.
std::vector<char*> decoderEnvironment() {
    static char oneThread[] = "OMP_NUM_THREADS=1";
    std::vector<char*> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        if (!std::string_view(*variable).starts_with("OMP_NUM_THREADS=")) {
            variables.push_back(*variable);
        }
    }
    variables.push_back(oneThread);
    variables.push_back(nullptr);
    return variables;
}

/// A copy of a descriptor, out of the way of those that the process is to get.
int duplicate(int descriptor) {
    const int copy = fcntl(descriptor, F_DUPFD_CLOEXEC, DecodeRequest::LAST + 1);
    check(copy < 0 ? errno : 0);
    return copy;
}

pid_t start(const std::string& program, const DecodeRequest& request, int file, int result, int alive) {
    FileActions actions;
    const Descriptor resultAside(duplicate(result));
    const Descriptor aliveAside(duplicate(alive));
    const Descriptor fileAside(duplicate(file));
    actions.open(STDIN_FILENO, O_RDONLY);
    actions.open(STDOUT_FILENO, O_WRONLY);
    actions.open(STDERR_FILENO, O_WRONLY);
    actions.pass(resultAside.get(), DecodeRequest::RESULT);
    actions.pass(aliveAside.get(), DecodeRequest::ALIVE);
    actions.pass(fileAside.get(), DecodeRequest::FILE);
    std::vector<std::string> words = request.toArguments();
    words.insert(words.begin(), program);
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    pid_t process = 0;
    const Attributes attributes;
    check(posix_spawn(&process, program.c_str(), actions.get(), attributes.get(), arguments.data(),
                      decoderEnvironment().data()));
    return process;
}

/// A child process, which does not outlive this.
class Child {
public:
    explicit Child(pid_t process) : mProcess(process) {}
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child() {
        if (!mEnded) {
            end();
        }
    }

    /// Kills it, if it still runs, with what it has started. @return the status of its end; nothing where nobody knows
    std::optional<int> end() {
        mEnded = true;
        kill(-mProcess, SIGKILL);
        // It may have left its group. Where this program's children are nobody's business, it is gone without a trace.
        for (std::chrono::microseconds pause{20}; pause < LONGEST_PAUSE; pause += pause / 4) {
            int status = 0;
            const pid_t waited = waitpid(mProcess, &status, WNOHANG);
            if (waited == mProcess) {
                return status;
            }
            if (waited < 0 && errno != EINTR) {
                return std::nullopt;
            }
            kill(mProcess, SIGKILL);
            std::this_thread::sleep_for(pause);
        }
        return std::nullopt; // the system cannot end it: it may wait for a disk that is no more
    }

private:
    static constexpr std::chrono::seconds LONGEST_PAUSE{2}; // after about ten seconds in all

    pid_t mProcess;
    bool mEnded = false;
};

/// False when the time is over and the process is not. @throws std::system_error
bool waitForEnd(int alive, std::chrono::milliseconds time) {
    const Clock::time_point end = Clock::now() + time;
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd closing{alive, POLLIN, 0};
        const int ready = poll(&closing, 1, static_cast<int>(std::clamp<std::int64_t>(left, 0, INT_MAX)));
        if (ready > 0) {
            return true;
        }
        check(ready < 0 && errno != EINTR && errno != EAGAIN ? errno : 0);
        if (left <= 0) {
            return false;
        }
    }
}

} // namespace

DecoderEnd runDecoder(const std::string& program, const DecodeRequest& request, int file, int result) {
    Pipe alive;
    Child child(start(program, request, file, result, alive.writing.get()));
    alive.writing.reset();
    DecoderEnd end;
    end.tookTooLong = !waitForEnd(alive.reading.get(), std::chrono::milliseconds(request.milliseconds));
    // Its end of the pipe closes when its fate is sealed. If it is not, it has closed it to be left alone.
    if (const std::optional<int> status = child.end()) {
        end.signal = WIFSIGNALED(*status) ? WTERMSIG(*status) : 0;
        end.exitCode = WIFEXITED(*status) ? WEXITSTATUS(*status) : 0;
    }
    return end;
}

std::string findDecoder(const std::string& subject) {
    const fs::path folder = programDirectory();
    if (folder.empty()) {
        throw Error(subject, "cannot be decoded in a separate process: the system does not say where this program is, "
                             "and its decoder should be beside it; --no-isolate works without");
    }
    const fs::path installed = (folder / ZQX_DECODER_FOLDER / DECODER).lexically_normal();
    for (const fs::path& candidate : {folder / DECODER, installed}) {
        if (access(candidate.c_str(), X_OK) == 0) {
            return candidate.string();
        }
    }
    throw Error(subject, std::string("cannot be decoded in a separate process: there is no program ") + DECODER +
                             " in " + folder.string() + " or " + installed.parent_path().string() +
                             "; install it, or use --no-isolate");
}

} // namespace zqx::pictures
