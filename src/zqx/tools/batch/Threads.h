// How the processors are shared between pictures, and how many of them one picture gets.
#pragma once

#include <cstddef>
#include <optional>

namespace zqx::tools {

/// Pictures at once, and threads that work on each.
struct WorkSplit {
    unsigned jobs = 1;
    unsigned threads = 1;
};

/// Shares processors out. Many pictures are best done one a processor; what is given decides over the rest.
/// @param threads 0 for all processors
WorkSplit splitWork(std::size_t pictures, unsigned processors, std::optional<unsigned> jobs,
                    std::optional<unsigned> threads);

} // namespace zqx::tools
