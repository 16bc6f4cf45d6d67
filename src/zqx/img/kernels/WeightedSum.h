// The inner loop of convolution: a weighted sum of rows, for either direction.
#pragma once

#include <cstddef>

namespace zqx::img::kernels {

/// Floats that may be read, and written to the target, beyond a length: the last vector is whole.
inline constexpr std::size_t WEIGHTED_SUM_EXCESS = 16;

/// target[i] = 0 + weights[0] * rows[0][offset + i] + weights[1] * rows[1][offset + i] + ... for i below length, in
/// single precision and in this order. Rows need no alignment; they may be one row, shifted.
using WeightedSum = void (*)(const float* const* rows, std::size_t offset, const float* weights, std::size_t count,
                             std::size_t length, float* target);

WeightedSum weightedSum();

} // namespace zqx::img::kernels
