// A run: a short stretch of pixels as planar floats that stays in the first-level cache, and how every kernel walks
// a row in such runs: decode, operate, encode.
#pragma once

#include <algorithm>
#include <cstddef>

#include "kernels/Simd.h"

namespace zqx::img::kernels {

#ifndef ZQX_IMG_RUN_LENGTH
#define ZQX_IMG_RUN_LENGTH 512 // bench/sizes measures others
#endif

/// Pixels per run: four planes take 8 KiB of the first-level cache. A multiple of any vector.
inline constexpr std::size_t RUN_LENGTH = ZQX_IMG_RUN_LENGTH;
static_assert(RUN_LENGTH % MAX_VECTOR_BYTES == 0);

/// Planes of linear values; grey formats use r alone. Kernels work on whole vectors, so what follows the pixels up to
/// the next multiple of MAX_VECTOR_BYTES elements is scratch.
struct Run {
    alignas(64) float r[RUN_LENGTH];
    alignas(64) float g[RUN_LENGTH];
    alignas(64) float b[RUN_LENGTH];
    alignas(64) float a[RUN_LENGTH];
};

/// Planes to be read; several may be the same (grey that is written into colour).
struct Planes {
    const float* r;
    const float* g;
    const float* b;
    const float* a;
};

/// Calls body(first, length) for consecutive runs that cover [0, width).
template <typename Body>
void forEachRun(std::size_t width, const Body& body) {
    for (std::size_t first = 0; first < width; first += RUN_LENGTH) {
        body(first, std::min(RUN_LENGTH, width - first));
    }
}

} // namespace zqx::img::kernels
