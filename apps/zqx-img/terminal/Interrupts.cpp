// The orderly end of an interrupted program.
#include "terminal/Interrupts.h"

#include <chrono>
#include <cstdlib>
#include <mutex>
#include <utility>

#include "terminal/System.h"
#include "zqx/pictures/files/LockWithin.h"
#include "zqx/pictures/files/TemporaryFiles.h"

namespace zqx::app {

using namespace pictures;

namespace {

struct Will {
    std::mutex mutex;
    std::function<void()> lastWords;
};

Will& will() {
    static Will& only = *new Will; // never destroyed: a signal may arrive while the program is exiting
    return only;
}

void endProgram(int exitCode) {
    constexpr std::chrono::seconds PATIENCE(5);
    if (TemporaryFiles::removeAll(PATIENCE)) {
        const std::unique_lock lock = lockWithin(will().mutex, PATIENCE);
        if (lock && will().lastWords) {
            will().lastWords();
        }
    }
    std::_Exit(exitCode);
}

} // namespace

void watchForInterrupts() {
    watchForEnd(endProgram);
}

LastWords::LastWords(std::function<void()> function) {
    const std::lock_guard lock(will().mutex);
    will().lastWords = std::move(function);
}

LastWords::~LastWords() {
    const std::lock_guard lock(will().mutex);
    will().lastWords = nullptr;
}

} // namespace zqx::app
