// Pictures live in few large blocks of memory. Backed by large pages they cost a fraction of the page faults, which for
// a fresh picture take longer than most operations on it.
#pragma once

#include <cstddef>

namespace zqx::img {

/// Tells the system that a block is going to be used as a whole. Does nothing for small blocks, and where there is no
/// such hint to give.
void adviseLargePages(void* data, std::size_t size);

} // namespace zqx::img
