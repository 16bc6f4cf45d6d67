// The one place where work is spread over threads: rows of an image, in a static schedule.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#if defined(__SANITIZE_THREAD__)
#include <thread>
#include <vector>
#else
#include <omp.h>
#endif

#include <hwy/cache_control.h>

namespace zqx::img::kernels {

/// Threads that a loop over many rows is spread over.
inline std::size_t threadCount() {
#if defined(__SANITIZE_THREAD__)
    return 3;
#else
    return static_cast<std::size_t>(omp_get_max_threads());
#endif
}

/// Chooses the threads of loops that the calling thread begins. The thread sanitizer's are always as many.
inline void setThreadCount([[maybe_unused]] std::size_t count) {
#if !defined(__SANITIZE_THREAD__)
    omp_set_num_threads(static_cast<int>(count));
#endif
}

/// Calls body(row) for every row in [0, count), in parallel, and returns when all are done.
/// The body must not throw: an exception cannot leave a parallel loop. Allocate before.
template <typename Body>
void forEachRow(std::size_t count, const Body& body) {
#if defined(__SANITIZE_THREAD__)
    // The thread sanitizer does not see how libgomp synchronises; it does see threads. Should one not start, the others
    // are joined before the exception leaves.
    const std::size_t workers = std::min(count, threadCount());
    std::vector<std::jthread> team;
    for (std::size_t worker = 0; worker < workers; ++worker) {
        team.emplace_back([=, &body] {
            for (std::size_t row = worker * count / workers; row < (worker + 1) * count / workers; ++row) {
                body(row);
            }
            hwy::FlushStream();
        });
    }
#else
    const auto rows = static_cast<std::int64_t>(count); // OpenMP 2.0 wants a signed index
#pragma omp parallel
    {
#pragma omp for schedule(static) nowait
        for (std::int64_t row = 0; row < rows; ++row) {
            body(static_cast<std::size_t>(row));
        }
        hwy::FlushStream(); // the streaming stores of bodies
    }
#endif
}

/// Bands that rows are divided into, one for each thread.
inline std::size_t bandCount(std::size_t rows) {
    return std::min(rows, threadCount());
}

/// Calls body(band, first, end) for bands of rows that cover [0, count), in parallel: for work that needs memory of its
/// own on each thread. There are bandCount(count) of them, and the result must not depend on where they meet.
template <typename Body>
void forEachBand(std::size_t count, const Body& body) {
    const std::size_t bands = bandCount(count);
    forEachRow(bands, [&](std::size_t band) { body(band, band * count / bands, (band + 1) * count / bands); });
}

} // namespace zqx::img::kernels
