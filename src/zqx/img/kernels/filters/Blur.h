// Separable convolution of images, borders replicated.
#pragma once

#include <vector>

#include <zqx/img/Image.h>

namespace zqx::img::kernels {

/// Convolves the source along its rows and then along its columns into the output of the same size, in linear floats
/// (see FilterWork), with an odd number of taps centred on the pixel. Per channel and pixel the products are added one
/// by one, first tap first. The output may be the source.
/// @throws std::bad_alloc before anything is written
void convolve(const Image& source, const Image& output, const std::vector<float>& taps);

} // namespace zqx::img::kernels
