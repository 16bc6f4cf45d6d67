// Smaller versions of images.
#pragma once

#include <zqx/img/Image.h>

namespace zqx::img::kernels {

/// Each pixel becomes the mean of the area that it covers in the source, in linear light, exact but for the rounding of
/// doubles and then to the format: bytes get the nearest code. Colour counts by its alpha; where there is none at all,
/// the colour in the middle is kept. A NaN stays within the pixels that cover it.
/// @param target of the source's format, in each direction at least one pixel and no larger than the source
/// @throws std::bad_alloc
void averageArea(const Image& source, const Image& target);

} // namespace zqx::img::kernels
