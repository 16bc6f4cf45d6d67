// Memory that runs short on request: the program's operator new, which the module's libraries share.
#pragma once

namespace test {

/// While it lives, one allocation of this thread, or all from that one on, throws std::bad_alloc. Off by default; other
/// threads and allocations that may return null are never affected.
class AllocationFailure {
public:
    enum Duration { ONCE, LASTING };

    /// @param after how many allocations succeed before
    explicit AllocationFailure(int after, Duration duration = ONCE);
    ~AllocationFailure();
    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;

    /// Whether an allocation has failed.
    bool hasHappened() const;
};

} // namespace test
