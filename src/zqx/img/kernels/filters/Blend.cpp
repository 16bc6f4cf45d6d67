#include "kernels/filters/Blend.h"

#include <algorithm>
#include <cstring>

#include "kernels/Rows.h"

namespace zqx::img::kernels {

namespace {

constexpr std::size_t CHANNELS = 3;

/// Pixels may lie at any address: a tile buffer over narrow pixels is not aligned for floats.
float loadFloat(const unsigned char* at) {
    float value;
    std::memcpy(&value, at, sizeof(value));
    return value;
}

void blendFloat(const unsigned char* src, unsigned char* target, double weight) {
    const auto blended = static_cast<float>(loadFloat(target) * (1.0 - weight) + loadFloat(src) * weight);
    std::memcpy(target, &blended, sizeof(blended));
}

/// Whole floats from a pixel to the end of its row, up to the three of a pixel.
std::size_t floatsInRow(const Image& image, std::size_t x) {
    return std::min(CHANNELS, (image.getWidth() - x) * image.getBytePixelStride() / sizeof(float));
}

std::size_t step(std::size_t i, std::size_t j, Ramp ramp) {
    switch (ramp) {
    case Ramp::COLUMNS: return j;
    case Ramp::ROWS: return i;
    case Ramp::CORNER: break;
    }
    return std::min(i, j);
}

} // namespace

void copyRectangle(const Image& src, const Image& target, const Tile& rectangle) {
    const std::size_t pixelBytes = std::min(src.getBytePixelStride(), target.getBytePixelStride());
    const bool isContiguous = src.getBytePixelStride() == target.getBytePixelStride();
    const std::size_t pieces = isContiguous ? 1 : rectangle.width;
    const std::size_t pieceBytes = isContiguous ? rectangle.width * pixelBytes : pixelBytes;
    if (pieceBytes == 0) {
        return;
    }
    forEachRow(rectangle.height, [&](std::size_t i) {
        for (std::size_t piece = 0; piece < pieces; ++piece) {
            std::memcpy(target.getPixelPtr(rectangle.x + piece, rectangle.y + i),
                        src.getPixelPtr(rectangle.x + piece, rectangle.y + i), pieceBytes);
        }
    });
}

void blendRectangle(const Image& src, const Image& target, const Tile& rectangle, Ramp ramp) {
    if (rectangle.width == 0) {
        return;
    }
    const std::size_t steps = ramp == Ramp::ROWS ? rectangle.height : rectangle.width;
    forEachRow(rectangle.height, [&](std::size_t i) {
        for (std::size_t j = 0; j < rectangle.width; ++j) {
            const std::size_t x = rectangle.x + j;
            const double weight = static_cast<double>(step(i, j, ramp) + 1) / static_cast<double>(steps + 1);
            const auto* from = static_cast<const unsigned char*>(src.getPixelPtr(x, rectangle.y + i));
            auto* to = static_cast<unsigned char*>(target.getPixelPtr(x, rectangle.y + i));
            const std::size_t floats = std::min(floatsInRow(src, x), floatsInRow(target, x));
            for (std::size_t channel = 0; channel < floats; ++channel) {
                blendFloat(from + channel * sizeof(float), to + channel * sizeof(float), weight);
            }
        }
    });
}

} // namespace zqx::img::kernels
