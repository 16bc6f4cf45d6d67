// The one place of the program that knows by what the library runs in parallel.
#include "zqx/tools/batch/Threads.h"

#include <algorithm>
#include <thread>

#include <zqx/tools/Batch.h>

#if defined(_OPENMP)
#include <omp.h>
#endif

namespace zqx::tools {

unsigned availableProcessors() {
#if defined(_OPENMP)
    return static_cast<unsigned>(omp_get_max_threads()); // what the user may have limited with OMP_NUM_THREADS
#else
    return std::max(1U, std::thread::hardware_concurrency());
#endif
}

WorkSplit splitWork(std::size_t pictures, unsigned processors, std::optional<unsigned> jobs,
                    std::optional<unsigned> threads) {
    WorkSplit split;
    if (threads) {
        split.threads = *threads == 0 ? processors : *threads;
    }
    const unsigned wanted = jobs ? *jobs : std::max(1U, processors / split.threads);
    split.jobs = static_cast<unsigned>(std::clamp<std::size_t>(pictures, 1, wanted));
    if (!threads) {
        split.threads = std::max(1U, processors / split.jobs);
    }
    return split;
}

void useThreads([[maybe_unused]] unsigned count) {
#if defined(_OPENMP)
    omp_set_num_threads(static_cast<int>(count)); // of this thread alone
#endif
}

} // namespace zqx::tools
