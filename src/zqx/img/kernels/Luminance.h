// The gain that unsharp masking of luminance applies to a pixel.
#pragma once

#include <zqx/img/Image.h>

namespace zqx::img::kernels {

/// Scales the colour of every pixel so that its luminance moves away from the blurred luminance.
///
/// With L the pixel's luminance and e the difference from the blurred one, shrunk by the threshold towards zero, the
/// gain is (strength * e + L) / L; there is no guard for L = 0. Alpha is left alone.
/// @param image linear float image, changed in place
/// @param blurred GRAY32F image of the same size
void applyLuminanceGain(const Image& image, const Image& blurred, float strength, float threshold);

} // namespace zqx::img::kernels
