#include "ToneCurve.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace tiled_denoise {

using zqx::img::Image;

namespace {

/// What half floats hold. Beyond it, and where there is no number, a render has gone wrong: a single such pixel must
/// not stretch the range of all others.
constexpr float LARGEST_HALF = 65504.0F;
/// The gain times the average. Half of it and twice as much cost less than 0.3 dB on the sample render.
constexpr double AVERAGE_EXPOSURE = 1.4;

template <typename Visit>
void forEachValue(const Image& picture, Visit visit) {
    for (std::size_t y = 0; y < picture.getHeight(); ++y) {
        for (std::size_t x = 0; x < picture.getWidth(); ++x) {
            auto* pixel = static_cast<float*>(picture.getPixelPtr(x, y));
            std::for_each(pixel, pixel + 3, visit);
        }
    }
}

} // namespace

/// The average is that of the logarithms, as a few very bright pixels say nothing of a picture; nor does a black
/// background.
ToneCurve::ToneCurve(const Image& picture) {
    double logarithms = 0;
    std::size_t count = 0;
    forEachValue(picture, [&](float value) {
        if (value > 0 && value <= LARGEST_HALF) {
            mBrightest = std::max(mBrightest, value);
            logarithms += std::log(value);
            ++count;
        }
    });
    if (count > 0) {
        mGain = static_cast<float>(AVERAGE_EXPOSURE / std::exp(logarithms / static_cast<double>(count)));
        mRange = std::log1p(mGain * mBrightest);
    }
}

float ToneCurve::encode(float linear) const {
    const float light = std::fmin(std::fmax(linear, 0.0F), mBrightest); // 0 for what is not a number
    return std::log1p(mGain * light) / mRange;
}

float ToneCurve::decode(float encoded) const {
    return std::expm1(encoded * mRange) / mGain;
}

void ToneCurve::encode(Image& picture) const {
    forEachValue(picture, [this](float& value) { value = encode(value); });
}

void ToneCurve::decode(Image& picture) const {
    forEachValue(picture, [this](float& value) { value = decode(value); });
}

} // namespace tiled_denoise
