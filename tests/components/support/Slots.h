// Calls by slot, as a separately built host does: what counts is the position in an object's table of virtual
// functions.
#pragma once

#include <cstddef>

#include <tov/Result.h>

#if (defined(__x86_64__) || defined(__aarch64__)) && !defined(_WIN32)
#define ZQX_KNOWS_SLOTS 1
#endif

namespace test {

#if defined(ZQX_KNOWS_SLOTS)

/// Under the Itanium ABI the table's address is an object's first word, and `this` is an ordinary first argument.
template <typename Return = tov::Result, typename... Args>
Return callSlot(void* object, std::size_t slot, Args... args) {
    using Function = Return (*)(void*, Args...);
    void** const table = *static_cast<void***>(object);
    return reinterpret_cast<Function>(table[slot])(object, args...);
}

#endif

} // namespace test
