// See Pictures.h.
#include "common/Pictures.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

using zqx::img::Image;

namespace bench {

namespace {

/// A value in [0, 1] that looks random, from a place on a lattice.
float latticeValue(std::uint32_t x, std::uint32_t y, std::uint32_t plane) {
    std::uint32_t h = x * 0x9E3779B1U ^ y * 0x85EBCA77U ^ plane * 0xC2B2AE3DU;
    h = (h ^ (h >> 15)) * 0x2C1B3C6DU;
    h = (h ^ (h >> 12)) * 0x297A2D39U;
    return static_cast<float>((h ^ (h >> 15)) >> 8) / 16777215.0F;
}

/// Bilinear between lattice values that lie cell pixels apart.
float smoothNoise(std::size_t x, std::size_t y, std::uint32_t cell, std::uint32_t plane) {
    const auto column = static_cast<std::uint32_t>(x) / cell;
    const auto row = static_cast<std::uint32_t>(y) / cell;
    const float right = static_cast<float>(x % cell) / static_cast<float>(cell);
    const float down = static_cast<float>(y % cell) / static_cast<float>(cell);
    const float top = latticeValue(column, row, plane) * (1.0F - right) + latticeValue(column + 1, row, plane) * right;
    const float bottom =
        latticeValue(column, row + 1, plane) * (1.0F - right) + latticeValue(column + 1, row + 1, plane) * right;
    return top * (1.0F - down) + bottom * down;
}

float sample(std::size_t x, std::size_t y, std::uint32_t channel) {
    const float tone = 1.1F * smoothNoise(x, y, 512, 0) + 0.25F * smoothNoise(x, y, 256, 1 + channel) +
                       0.25F * smoothNoise(x, y, 32, 4) + 0.1F * smoothNoise(x, y, 4, 5 + channel) - 0.35F;
    const float limited = std::clamp(tone, 0.0F, 1.0F);
    return limited * limited; // seen evenly spread, so mostly dark in linear light
}

std::shared_ptr<Image> linearPhotograph(std::size_t width, std::size_t height) {
    auto image = std::make_shared<Image>(width, height, Image::RGB32F, 1);
    const auto rows = static_cast<std::int64_t>(height);
#pragma omp parallel for schedule(static)
    for (std::int64_t y = 0; y < rows; ++y) {
        auto* row = static_cast<float*>(image->getRowPtr(static_cast<std::size_t>(y)));
        for (std::size_t x = 0; x < width; ++x) {
            for (std::uint32_t channel = 0; channel < 3; ++channel) {
                row[3 * x + channel] = sample(x, static_cast<std::size_t>(y), channel);
            }
        }
    }
    return image;
}

} // namespace

std::shared_ptr<Image> photograph(std::size_t width, std::size_t height, Image::Format format) {
    // Made once per size: of a large picture it takes longer than most of what is measured on it.
    static std::shared_ptr<Image> linear;
    if (!linear || linear->getWidth() != width || linear->getHeight() != height) {
        linear = linearPhotograph(width, height);
    }
    return linear->convertTo(format);
}

std::shared_ptr<Image> blankPicture(std::size_t width, std::size_t height, Image::Format format) {
    auto image = std::make_shared<Image>(width, height, format, 1);
    std::memset(image->getDataPtr(), 0, byteCount(*image));
    return image;
}

std::size_t byteCount(const Image& image) {
    return image.getHeight() * image.getByteRowStride();
}

} // namespace bench
