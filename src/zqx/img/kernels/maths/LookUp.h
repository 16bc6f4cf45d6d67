// Reading tables at many places.
#pragma once

#include <cstddef>
#include <cstring>

#include <hwy/base.h>

namespace zqx::img::kernels {

/// values[i] = table[indices[i]], one by one, at an address of any alignment. Plain loads beat the gather instructions
/// of the processors that have them: so this is neither vectorised nor part of code that is.
template <typename Index, typename Value>
HWY_NOINLINE void lookUp(const Value* table, Index* indices, std::size_t length, void* values) {
    constexpr std::size_t BLOCK = 8; // unrolled: the speed of a shorter loop depends on where it happens to lie
    auto* bytes = static_cast<unsigned char*>(values);
    const auto copy = [&](std::size_t i) { std::memcpy(bytes + i * sizeof(Value), table + indices[i], sizeof(Value)); };
    std::size_t i = 0;
    for (; i + BLOCK <= length; i += BLOCK) {
        for (std::size_t j = 0; j < BLOCK; ++j) {
            copy(i + j);
        }
    }
    for (; i < length; ++i) {
        copy(i);
    }
}

} // namespace zqx::img::kernels
