// Gaussian blur: the integrated kernel and two passes with replicated borders.
#pragma once

#include <cstdint>
#include <vector>

#include "oracle/Convert.h"
#include "oracle/Pixels.h"

namespace oracle {

inline double normalDensity(double x, double sigma) {
    return std::exp(x * x / (-2.0 * sigma * sigma)) * 1.0 / (std::sqrt(2.0 * 3.14159265358979323846) * sigma);
}

/// Integral of the density over [left, left + 1] by Simpson's rule on an odd number of samples.
inline float integratedTap(double left, double sigma, std::uint64_t samples) {
    std::vector<float> positions;
    std::vector<float> densities;
    for (std::uint64_t k = 0; k < samples; ++k) {
        const double x = left + static_cast<double>(k) * (1.0 / static_cast<double>(samples - 1));
        positions.push_back(static_cast<float>(x));
        densities.push_back(static_cast<float>(normalDensity(x, sigma)));
    }
    float sum = densities.front() + densities.back();
    for (std::uint64_t k = 1; k + 1 < samples; ++k) {
        sum += (k % 2 == 1 ? 4.0F : 2.0F) * densities[k];
    }
    return (positions.back() - positions.front()) / static_cast<float>(samples - 1) * sum / 3.0F;
}

inline std::vector<float> blurKernel(double sigma) {
    const int radius = static_cast<int>(std::ceil(2.0 * sigma));
    const int length = 2 * radius + 1;
    std::uint64_t samples = static_cast<std::uint64_t>(std::ceil(1000.0F / static_cast<float>(length)));
    if (samples % 2 == 0) {
        ++samples;
    }
    std::vector<float> kernel;
    float total = 0.0F;
    for (int i = 0; i < length; ++i) {
        kernel.push_back(integratedTap(-radius - 0.5 + i, sigma, samples));
        total += kernel.back();
    }
    for (float& tap : kernel) {
        tap /= total;
    }
    return kernel;
}

inline std::size_t clampedIndex(std::size_t center, std::size_t tap, std::size_t radius, std::size_t count) {
    if (center + tap < radius) {
        return 0;
    }
    const std::size_t index = center + tap - radius;
    return index < count ? index : count - 1;
}

/// One pass over a packed float picture; horizontal steps along rows, vertical along columns.
inline void blurPass(const Surface& from, const Surface& to, const std::vector<float>& kernel, bool horizontal) {
    const std::size_t radius = kernel.size() / 2;
    for (std::size_t y = 0; y < from.height; ++y) {
        for (std::size_t x = 0; x < from.width; ++x) {
            for (int c = 0; c < facts(from.format).channels; ++c) {
                float sum = 0.0F;
                for (std::size_t j = 0; j < kernel.size(); ++j) {
                    const std::size_t fromX = horizontal ? clampedIndex(x, j, radius, from.width) : x;
                    const std::size_t fromY = horizontal ? y : clampedIndex(y, j, radius, from.height);
                    sum = kernel[j] * loadFloat(from.at(fromX, fromY) + 4 * c) + sum;
                }
                storeFloat(to.at(x, y) + 4 * c, sum);
            }
        }
    }
}

inline void blurFloats(const Surface& picture, float sigma) {
    const std::vector<float> kernel = blurKernel(static_cast<double>(sigma));
    Picture between(picture.width, picture.height, picture.format);
    blurPass(picture, between.surface, kernel, true);
    blurPass(between.surface, picture, kernel, false);
}

/// Filters work in the target's float format, or in the source's channels when the target holds bytes.
inline unsigned workingFormat(unsigned source, unsigned target) {
    return facts(target).isFloat ? target : linearFloatFormat(source);
}

inline void blur(const Surface& source, const Surface& target, float sigma) {
    Picture working(source.width, source.height, workingFormat(source.format, target.format));
    convert(source, working.surface);
    blurFloats(working.surface, sigma);
    convert(working.surface, target);
}

} // namespace oracle
