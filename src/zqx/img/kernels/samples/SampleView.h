// Samples in somebody's memory that no pixel format of the image model stands for: 16-bit codes, doubles.
#pragma once

#include <cstddef>
#include <type_traits>

namespace zqx::img::kernels {

/// Rows of interleaved samples, each at an address that suits its type.
template <typename Sample>
struct SampleView {
    Sample* data;
    std::size_t width;        ///< pixels in a row
    std::size_t height;       ///< rows
    std::size_t channels;     ///< samples of a pixel: 1, 3, or 4 with alpha last
    std::size_t rowStride;    ///< bytes from one row to the next
    bool bottomFirst = false; ///< whether memory begins with the bottom row

    /// Row 0 is the top one.
    Sample* row(std::size_t y) const {
        using Byte = std::conditional_t<std::is_const_v<Sample>, const unsigned char, unsigned char>;
        return reinterpret_cast<Sample*>(reinterpret_cast<Byte*>(data) +
                                         (bottomFirst ? height - 1 - y : y) * rowStride);
    }
    std::size_t samplesPerRow() const { return width * channels; }
};

} // namespace zqx::img::kernels
