// One template over the number of floats per pixel.
#include "Luminance.h"

#include <algorithm>

#include "ColorScience.h"
#include "PixelFormat.h"
#include "Rows.h"

namespace zqx::img::kernels {

namespace {

struct Gain {
    float strength;
    float threshold;

    float operator()(float luminance, float blurred) const {
        const float difference = luminance - blurred;
        const float shrunk =
            difference < 0.0F ? std::min(difference + threshold, 0.0F) : std::max(difference - threshold, 0.0F);
        return (strength * shrunk + luminance) / luminance;
    }
};

template <std::size_t Channels>
float luminanceOf(const float* pixel) {
    if constexpr (Channels == 1) {
        return pixel[0];
    } else {
        return LUMA_GREEN * pixel[1] + LUMA_RED * pixel[0] + LUMA_BLUE * pixel[2]; // green first: the order counts
    }
}

template <std::size_t Channels>
void applyGain(const Image& image, const Image& blurred, Gain gain) {
    constexpr std::size_t COLORS = std::min<std::size_t>(Channels, 3);
    forEachRow(image.getHeight(), [&](std::size_t y) {
        auto* pixel = static_cast<float*>(image.getRowPtr(y));
        const auto* blurredRow = static_cast<const float*>(blurred.getRowPtr(y));
        for (std::size_t x = 0; x < image.getWidth(); ++x, pixel += Channels) {
            const float factor = gain(luminanceOf<Channels>(pixel), blurredRow[x]);
            for (std::size_t channel = 0; channel < COLORS; ++channel) {
                pixel[channel] *= factor;
            }
        }
    });
}

} // namespace

void applyLuminanceGain(const Image& image, const Image& blurred, float strength, float threshold) {
    const Gain gain{strength, threshold};
    switch (image.getFormat()) {
    case Image::GRAY32F: applyGain<1>(image, blurred, gain); break;
    case Image::RGB32F: applyGain<3>(image, blurred, gain); break;
    case Image::RGBA32F: applyGain<4>(image, blurred, gain); break;
    default: break;
    }
}

} // namespace zqx::img::kernels
