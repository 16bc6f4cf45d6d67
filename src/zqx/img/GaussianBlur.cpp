#include <zqx/img/GaussianBlur.h>

#include <cmath>
#include <stdexcept>

#include "kernels/filters/Blur.h"
#include "kernels/filters/FilterWork.h"
#include "kernels/maths/ScalarMaths.h"

namespace zqx::img {

namespace {

const double ROOT_OF_TWO_PI = std::sqrt(2.0 * 3.14159265358979323846);

/// Density evaluations spent on a whole kernel, whatever its length.
constexpr float DENSITY_SAMPLES = 1000.0F;

double normalDensity(double x, double sigma) {
    return kernels::maths::exp(x * x / (-2.0 * sigma * sigma)) / (ROOT_OF_TWO_PI * sigma);
}

/// ceil(2 sigma); 0 for what has no radius (negative, NaN).
std::size_t computeRadius(double sigma) {
    const double radius = std::ceil(2.0 * sigma);
    if (!(radius > 0.0)) {
        return 0;
    }
    if (radius > 1e15) {
        throw std::length_error("GaussianBlur: sigma is too large");
    }
    return static_cast<std::size_t>(radius);
}

/// Samples per tap for Simpson's rule: odd.
std::size_t samplesPerTap(std::size_t tapCount) {
    const auto samples = static_cast<std::size_t>(std::ceil(DENSITY_SAMPLES / static_cast<float>(tapCount)));
    return samples % 2 == 0 ? samples + 1 : samples;
}

/// Simpson's rule over [start, start + 1]. Samples are kept, and summed, in single precision: end points first.
float integrateDensity(double start, double sigma, std::size_t samples) {
    const double step = 1.0 / static_cast<double>(samples - 1);
    const auto abscissa = [=](std::size_t k) { return start + static_cast<double>(k) * step; };
    const auto density = [=](std::size_t k) { return static_cast<float>(normalDensity(abscissa(k), sigma)); };

    float sum = density(0) + density(samples - 1);
    for (std::size_t k = 1; k + 1 < samples; ++k) {
        sum += (k % 2 == 1 ? 4.0F : 2.0F) * density(k);
    }
    const float width = static_cast<float>(abscissa(samples - 1)) - static_cast<float>(abscissa(0));
    return width / static_cast<float>(samples - 1) * sum / 3.0F;
}

} // namespace

double GaussianBlur::radius2sigma(const std::size_t& radius) {
    return static_cast<double>(radius) * 0.5;
}

std::vector<float> GaussianBlur::computeKernel(double sigma) {
    const std::size_t radius = computeRadius(sigma);
    const std::size_t tapCount = 2 * radius + 1;
    const std::size_t samples = samplesPerTap(tapCount);

    std::vector<float> taps(tapCount);
    float total = 0.0F;
    for (std::size_t i = 0; i < tapCount; ++i) {
        const double start = -static_cast<double>(radius) - 0.5 + static_cast<double>(i);
        taps[i] = integrateDensity(start, sigma, samples);
        total += taps[i];
    }
    for (float& tap : taps) {
        tap /= total;
    }
    return taps;
}

bool GaussianBlur::execute() {
    if (!kernels::haveSameSize(mSrcImage, mOutImage)) {
        return false;
    }
    kernels::convolve(mSrcImage, mOutImage, computeKernel(static_cast<double>(mSigma)));
    return false; // on every path: callers judge by the output
}

} // namespace zqx::img
