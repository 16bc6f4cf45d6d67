// Memory that a piece of work takes: the program's operator new, which the library shares, keeps count.
#pragma once

#include <cstddef>

namespace test {

/// Counts from its construction on, in all threads. One at a time.
class CountedMemory {
public:
    CountedMemory();
    CountedMemory(const CountedMemory&) = delete;
    CountedMemory& operator=(const CountedMemory&) = delete;

    /// The most bytes that were held at once, beyond those held at the beginning.
    std::size_t peak() const;
    /// Bytes of the largest single allocation.
    std::size_t largest() const;
    /// Allocations so far.
    std::size_t count() const;

private:
    std::size_t mBefore;
};

} // namespace test
