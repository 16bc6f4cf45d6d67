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

/// Copies the first three floats of every pixel between float images of one size, and leaves a fourth as it is.
/// Does nothing where one has no pixels.
void copyColor(const Image& src, const Image& target);

} // namespace zqx::img::kernels
