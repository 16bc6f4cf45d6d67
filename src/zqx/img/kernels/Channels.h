// In-place operations on single pixels: inversion, and alpha multiplied into or out of colour.
#pragma once

#include <zqx/img/Image.h>

namespace zqx::img::kernels {

/// See Image::invert.
void invertChannels(const Image& image, Channel mask);
/// See premultiplied2StraightAlpha.
void divideByAlpha(const Image& image);
/// See straight2PremultipliedAlpha.
void multiplyByAlpha(const Image& image);

} // namespace zqx::img::kernels
