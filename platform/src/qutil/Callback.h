// A callback of the host that may be replaced while other threads call it.
#pragma once

#include <mutex>
#include <utility>

namespace qutil {

template <typename Function>
class Callback {
public:
    /// @return the previous one.
    Function exchange(Function next) {
        const std::scoped_lock lock(mMutex);
        return std::exchange(mFunction, std::move(next));
    }

    /// A copy, to be called without the lock: a callback may log, fail an assertion or replace itself.
    Function current() {
        const std::scoped_lock lock(mMutex);
        return mFunction;
    }

private:
    std::mutex mMutex;
    Function mFunction;
};

} // namespace qutil
