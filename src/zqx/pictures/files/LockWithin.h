// Locking a mutex with a timeout.
#pragma once

#include <chrono>
#include <mutex>
#include <thread>

namespace zqx::pictures {

/// Locks a mutex unless that takes too long, for example because its owner hangs on an unreachable network share.
inline std::unique_lock<std::mutex> lockWithin(std::mutex& mutex, std::chrono::milliseconds patience) {
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
