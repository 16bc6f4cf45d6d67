// Ctrl-C and the like: however the program is interrupted, no partial file is left behind.
#pragma once

#include <functional>

namespace zqx::app {

/// When the program is asked to end, removes temporary files, calls the function of LastWords and exits. The exit code
/// is 128 plus the number of the signal: 130 for Ctrl-C. To be called once, before other threads are started.
void watchForInterrupts();

/// Registers a function to be called at an interruption, for as long as this object exists.
class LastWords {
public:
    /// @param function is called on another thread while all others continue, and must not wait for them for long
    explicit LastWords(std::function<void()> function);
    LastWords(const LastWords&) = delete;
    LastWords& operator=(const LastWords&) = delete;
    ~LastWords();
};

} // namespace zqx::app
