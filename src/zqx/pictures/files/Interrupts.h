// Ctrl-C and the like: whatever ends the program, no half-written file stays behind.
#pragma once

#include <chrono>
#include <functional>
#include <mutex>
#include <set>
#include <string>

namespace zqx::pictures {

/// Has a thread of its own wait for what asks the program to end, other than what it was started deaf to (nohup).
/// Temporary files are removed then, and the exit code is 128 + the signal's number: 130 for Ctrl-C.
///
/// To be called once, before there are other threads: those started later leave the signals to the one that waits.
void watchForInterrupts();

/// The files that may not outlive the program. What makes, renames or removes one holds this for all of it, so that an
/// interruption comes before or after, never between.
class TemporaryFiles {
public:
    TemporaryFiles();
    TemporaryFiles(const TemporaryFiles&) = delete;
    TemporaryFiles& operator=(const TemporaryFiles&) = delete;
    ~TemporaryFiles() = default;

    void add(const std::string& name);
    void forget(const std::string& name);

private:
    std::unique_lock<std::mutex> mLock;
    std::set<std::string>& mNames;
};

/// Has something said or tidied up at an interruption, for as long as it lives.
class LastWords {
public:
    /// @param function runs on another thread while all others go on, and must not wait for them for long
    explicit LastWords(std::function<void()> function);
    LastWords(const LastWords&) = delete;
    LastWords& operator=(const LastWords&) = delete;
    ~LastWords();
};

/// Locks a mutex, unless somebody keeps it for longer than one waits: a thread may hang in a dead network share.
std::unique_lock<std::mutex> lockWithin(std::mutex& mutex, std::chrono::milliseconds patience);

} // namespace zqx::pictures
