// Unsharp masking of luminance: one gain for the colour channels of each pixel.
#pragma once

#include <vector>

#include <zqx/img/Image.h>

namespace zqx::img::kernels {

struct SharpenSettings {
    float strength;  ///< factor on the difference between a luminance and its blurred surroundings
    float threshold; ///< differences up to this are ignored
};

/// Sharpens the source into the output of the same size, in linear floats (see FilterWork), against the luminance
/// convolved with the taps. Alpha is left as it is. The output may be the source.
/// @throws std::bad_alloc before anything is written
void sharpenLuminance(const Image& source, const Image& output, const std::vector<float>& taps,
                      const SharpenSettings& settings);

} // namespace zqx::img::kernels
