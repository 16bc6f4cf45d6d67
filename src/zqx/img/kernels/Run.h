// A run: a short stretch of pixels as planar floats that stays in the first-level cache, and how every kernel walks
// a row in such runs: decode, operate, encode.
#pragma once

#include <algorithm>
#include <cstddef>

namespace zqx::img::kernels {

/// Pixels per run: four planes of this length take half of a 16 KiB cache share.
inline constexpr std::size_t RUN_LENGTH = 512;

/// Planes of linear values; grey formats use r alone.
struct Run {
    alignas(64) float r[RUN_LENGTH];
    alignas(64) float g[RUN_LENGTH];
    alignas(64) float b[RUN_LENGTH];
    alignas(64) float a[RUN_LENGTH];
};

/// Calls body(first, length) for consecutive runs that cover [0, width).
template <typename Body>
void forEachRun(std::size_t width, const Body& body) {
    for (std::size_t first = 0; first < width; first += RUN_LENGTH) {
        body(first, std::min(RUN_LENGTH, width - first));
    }
}

} // namespace zqx::img::kernels
