// Ctrl-C and the like: whatever ends the program, no half-written file stays behind.
#pragma once

#include <functional>

namespace zqx::app {

/// Removes temporary files when the program is asked to end, has the last words said, and ends it. The exit code is 128
/// + the signal's number: 130 for Ctrl-C. To be called once, before there are other threads.
void watchForInterrupts();

/// Has something said or tidied up at an interruption, for as long as it lives.
class LastWords {
public:
    /// @param function runs on another thread while all others go on, and must not wait for them for long
    explicit LastWords(std::function<void()> function);
    LastWords(const LastWords&) = delete;
    LastWords& operator=(const LastWords&) = delete;
    ~LastWords();
};

} // namespace zqx::app
