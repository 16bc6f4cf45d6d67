// The two passes of a separable convolution over linear float images, borders replicated.
#pragma once

#include <vector>

#include <zqx/img/Image.h>

namespace zqx::img::kernels {

/// Convolves every row of the source into the target with an odd number of taps centred on the pixel.
/// Both images have the same float format, width and height, and packed pixels.
/// Per channel and pixel the products are added one by one, first tap first.
/// @throws std::bad_alloc before anything is written
void convolveRows(const Image& source, const Image& target, const std::vector<float>& taps);

/// The same along columns. Source and target must not overlap.
void convolveColumns(const Image& source, const Image& target, const std::vector<float>& taps);

} // namespace zqx::img::kernels
