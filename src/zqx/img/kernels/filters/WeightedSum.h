// The inner loop of convolution: a weighted sum of rows, for either direction.
#pragma once

#include <cstddef>

namespace zqx::img::kernels {

/// Floats that may be read, and written to targets, beyond a length: the last vector is whole.
inline constexpr std::size_t WEIGHTED_SUM_EXCESS = 16;

/// Sums of a group share the rows that they read.
inline constexpr std::size_t WEIGHTED_SUM_GROUP = 4;

struct WeightedSums {
    /// target[i] = 0 + weights[0] * rows[0][offset + i] + weights[1] * rows[1][offset + i] + ... for i below length, in
    /// single precision and in this order. Rows need no alignment; they may be one row, shifted.
    void (*one)(const float* const* rows, std::size_t offset, const float* weights, std::size_t count,
                std::size_t length, float* target);
    /// The same for a group of targets, the first over rows[0] and the rows after it, the next over rows[1] and so on.
    /// There are at least as many weights as sums in a group.
    void (*group)(const float* const* rows, std::size_t offset, const float* weights, std::size_t count,
                  std::size_t length, float* const* targets);
};

/// For the processor's instruction set.
WeightedSums weightedSums();

} // namespace zqx::img::kernels
