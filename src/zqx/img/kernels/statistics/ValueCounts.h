// How often each value occurs in an image, on the scale of encoded bytes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include <zqx/img/Image.h>

namespace zqx::img::kernels {

/// The values of one channel. What is out of range is counted apart and in no bin.
struct ChannelCounts {
    std::array<std::uint64_t, 256> bins{}; ///< by code
    std::uint64_t below = 0;               ///< less than 0
    std::uint64_t above = 0;               ///< more than 1
    std::uint64_t nan = 0;                 ///< not a number
};

struct ValueCounts {
    enum Channel : std::size_t { RED, GREEN, BLUE, LUMA };

    std::array<ChannelCounts, 4> channels;
};

/// Encoded bytes are counted as they are, linear floats go to the nearest code. Luma is the weighted sum of linear
/// light by ITU-R BT.709, encoded; of grey images it is all there is. Alpha is not looked at.
/// @param image encoded bytes or floats; of linear bytes nothing is counted
/// @throws std::bad_alloc
ValueCounts countValues(const Image& image);

} // namespace zqx::img::kernels
