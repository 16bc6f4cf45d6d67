// What all single-kernel measurements share: two sizes of pictures, and what is counted.
#pragma once

#include <benchmark/benchmark.h>

#include <zqx/img/Image.h>

#include "common/Pictures.h"

namespace bench {

/// A picture that streams through memory, and one that stays in the caches: arguments 0 and 1 of a benchmark.
inline void bothSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"width", "height"})->Args({6000, 4000})->Args({256, 256})->UseRealTime();
}

inline std::size_t readWidth(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(0));
}

inline std::size_t readHeight(const benchmark::State& state) {
    return static_cast<std::size_t>(state.range(1));
}

inline std::shared_ptr<zqx::img::Image> getSource(const benchmark::State& state, zqx::img::Image::Format format) {
    return photograph(readWidth(state), readHeight(state), format);
}

inline std::shared_ptr<zqx::img::Image> getTarget(const benchmark::State& state, zqx::img::Image::Format format) {
    return blankPicture(readWidth(state), readHeight(state), format);
}

/// Pixels (as items) and bytes per second. @param bytes read and written by one iteration
inline void count(benchmark::State& state, std::size_t pixels, std::size_t bytes) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(pixels));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

inline void count(benchmark::State& state, const zqx::img::Image& source, const zqx::img::Image& target) {
    count(state, source.getWidth() * source.getHeight(), byteCount(source) + byteCount(target));
}

// Each file registers what it measures.
void registerConversions();
void registerGrading();
void registerFilters();
void registerTurns();

} // namespace bench
