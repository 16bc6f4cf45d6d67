// How kernels reach the processor's vector units: each kernel file is compiled once per instruction set by Highway, and
// the best one that the processor has is chosen when it is called.
//
// All instruction sets give the same bits. So kernels never use fused multiply-add (not every set has it), never
// reciprocal or square root estimates, and no minimum or maximum (sets differ over NaN): a comparison and a selection
// instead.
#pragma once

#include <cstddef>

namespace zqx::img::kernels {

/// The largest number of 8-bit lanes of any vector. Buffers are multiples of this, so that the last vector of a run
/// needs no code of its own: it computes lanes that nobody reads.
inline constexpr std::size_t MAX_VECTOR_BYTES = 64;

} // namespace zqx::img::kernels
