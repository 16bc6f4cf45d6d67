#include "system/LargePages.h"

#if defined(__linux__)
#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>
#endif

namespace zqx::img {

#if defined(__linux__)

void adviseLargePages(void* data, std::size_t size) {
    constexpr std::size_t WORTHWHILE = std::size_t{4} << 20U; // two large pages at least, wherever the block begins
    if (size < WORTHWHILE) {
        return;
    }
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const std::uintptr_t toFirst = (page - reinterpret_cast<std::uintptr_t>(data) % page) % page;
    const std::uintptr_t wholePages = (size - toFirst) / page * page;
    // A hint: where it is refused, small pages serve as well.
    static_cast<void>(madvise(static_cast<unsigned char*>(data) + toFirst, wholePages, MADV_HUGEPAGE));
}

#else

void adviseLargePages(void*, std::size_t) {
}

#endif

} // namespace zqx::img
