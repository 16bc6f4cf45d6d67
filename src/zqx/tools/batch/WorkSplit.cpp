// Shares the processors among pictures.
#include <zqx/tools/Batch.h>

#include <algorithm>

namespace zqx::tools {

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

} // namespace zqx::tools
