// Floats of all kinds, for functions of one float.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>

namespace test {

/// Calls check(v) for floats of all kinds, each some way from the next, until it fails.
template <typename Check>
void forFloatsOfAllKinds(const Check& check) {
    constexpr std::uint64_t STRIDE = 1021; // a prime: every bit takes both values
    for (std::uint64_t bits = 0; bits <= UINT32_MAX; bits += STRIDE) {
        if (!check(std::bit_cast<float>(static_cast<std::uint32_t>(bits)))) {
            return;
        }
    }
}

/// Calls check(v) for a float and the nearest on both sides, until it fails.
template <typename Check>
bool forNeighbours(float v, const Check& check) {
    constexpr int NEIGHBOURS = 3;
    for (int i = 0; i < NEIGHBOURS; ++i) {
        v = std::nextafter(v, 0.0F);
    }
    for (int i = 0; i <= 2 * NEIGHBOURS; ++i, v = std::nextafter(v, 2.0F)) {
        if (!check(v)) {
            return false;
        }
    }
    return true;
}

} // namespace test
