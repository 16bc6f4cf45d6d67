// Reading tables at many places.
#pragma once

#include <cstddef>

#include <hwy/base.h>

namespace zqx::img::kernels {

/// values[i] = table[indices[i]], one by one. Plain loads beat the gather instructions of the processors that have them
/// (the benchmark "look up"): so this is neither vectorised nor part of code that is.
template <typename Index, typename Value>
HWY_NOINLINE void lookUp(const Value* table, Index* indices, std::size_t length, Value* values) {
    for (std::size_t i = 0; i < length; ++i) {
        values[i] = table[indices[i]];
    }
}

} // namespace zqx::img::kernels
