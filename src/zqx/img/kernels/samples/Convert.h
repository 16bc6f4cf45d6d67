// Conversion between all pixel formats.
#pragma once

#include <zqx/img/Image.h>

namespace zqx::img::kernels {

/// Converts every pixel of the source into the target, which has the same width and height, by each image's own
/// strides. An unknown format on either side does nothing. See Image::convertTo for the rules.
void convertPixels(const Image& source, const Image& target);

/// Brings the source into the target, which has the same width and height: copies equal formats byte for byte and
/// converts others.
void bringInto(const Image& source, Image& target);

} // namespace zqx::img::kernels
