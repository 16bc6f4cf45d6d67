// Rows of pixels as longer rows of single samples: what treats all channels alike, and leaves them where they are, need
// not take pixels apart.
#pragma once

#include <cstddef>
#include <optional>

#include <zqx/img/Image.h>

#include "kernels/samples/PixelFormat.h"

namespace zqx::img::kernels {

/// A row as an operation between two images walks it.
struct RowLayout {
    Format source;
    Format target;
    std::size_t sourceStride; ///< bytes from one element of the row to the next
    std::size_t targetStride;
    std::size_t width;
    std::size_t step; ///< elements of the row that make a pixel
};

/// The row of pixels as it is, of the source's width.
RowLayout pixelRow(const Image& source, const Image& target);

/// The row as samples in single-channel formats, when that is the same: for known formats, if both images are packed
/// and have the same channels in the same order, encoded alike within each.
std::optional<RowLayout> sampleRow(const Image& source, const Image& target);

} // namespace zqx::img::kernels
