// Atomic operations on plain counters. Out of line, so that headers that count need no C++20.
#include <rhm/Atomic.h>

#include <atomic>

namespace rhm {

std::uint32_t rhmAtomicIncrement(std::uint32_t* pCount) {
    return std::atomic_ref(*pCount).fetch_add(1) + 1;
}

std::uint32_t rhmAtomicDecrement(std::uint32_t* pCount) {
    return std::atomic_ref(*pCount).fetch_sub(1) - 1;
}

} // namespace rhm
