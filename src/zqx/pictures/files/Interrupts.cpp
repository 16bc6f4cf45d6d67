// Signals are waited for by a thread, not caught by a handler: a handler may not lock, allocate or print.
#include "zqx/pictures/files/Interrupts.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <thread>
#include <utility>

#include "zqx/pictures/files/InputFile.h"

#if defined(_WIN32)
#define NOMINMAX
#include <windows.h>
#else
#include <csignal>

#include <unistd.h>
#endif

namespace zqx::pictures {

namespace {

struct State {
    std::mutex mutex;
    std::set<std::string> temporaries;
    std::function<void()> lastWords;
};

State& state() {
    static State& state = *new State; // never destroyed: an interruption may come while the program ends
    return state;
}

void endProgram(int exitCode) {
    constexpr std::chrono::seconds PATIENCE(5);
    State& all = state();
    const std::unique_lock lock = lockWithin(all.mutex, PATIENCE); // to the end: nobody puts a file in place any more
    if (lock) {
        for (const std::string& name : all.temporaries) {
            std::error_code ignored;
            std::filesystem::remove(toPath(name), ignored);
        }
        if (all.lastWords) {
            all.lastWords();
        }
    }
    std::_Exit(exitCode);
}

#if defined(_WIN32)

BOOL WINAPI onConsoleEvent(DWORD event) {
    constexpr int INTERRUPTED = 130;
    constexpr int TERMINATED = 143;
    endProgram(event == CTRL_C_EVENT ? INTERRUPTED : TERMINATED);
    return TRUE;
}

#else

bool isIgnored(int number) {
    struct sigaction present {};
    return sigaction(number, nullptr, &present) == 0 && present.sa_handler == SIG_IGN;
}

#endif

} // namespace

#if defined(_WIN32)

void watchForInterrupts() {
    SetConsoleCtrlHandler(onConsoleEvent, TRUE);
}

#else

void watchForInterrupts() {
    std::signal(SIGXFSZ, SIG_IGN); // a file size limit then is an ordinary write error
    sigset_t watched;
    sigemptyset(&watched);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        if (!isIgnored(number)) {
            sigaddset(&watched, number);
        }
    }
    pthread_sigmask(SIG_BLOCK, &watched, nullptr);
    std::thread([watched] {
        for (int number = 0;;) {
            if (sigwait(&watched, &number) == 0) {
                endProgram(128 + number);
            }
        }
    }).detach();
}

#endif

TemporaryFiles::TemporaryFiles() : mLock(state().mutex), mNames(state().temporaries) {
}

void TemporaryFiles::add(const std::string& name) {
    mNames.insert(name);
}

void TemporaryFiles::forget(const std::string& name) {
    mNames.erase(name);
}

LastWords::LastWords(std::function<void()> function) {
    const std::lock_guard lock(state().mutex);
    state().lastWords = std::move(function);
}

LastWords::~LastWords() {
    const std::lock_guard lock(state().mutex);
    state().lastWords = nullptr;
}

std::unique_lock<std::mutex> lockWithin(std::mutex& mutex, std::chrono::milliseconds patience) {
    constexpr std::chrono::milliseconds PAUSE(5);
    const auto end = std::chrono::steady_clock::now() + patience;
    std::unique_lock lock(mutex, std::try_to_lock);
    while (!lock && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(PAUSE);
        (void)lock.try_lock();
    }
    return lock;
}

} // namespace zqx::pictures
