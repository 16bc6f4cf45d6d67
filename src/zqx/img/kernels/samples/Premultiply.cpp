#include "kernels/samples/Premultiply.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>

#include "kernels/Rows.h"

namespace zqx::img::kernels {

namespace {

constexpr std::size_t COLORS = 3;
constexpr std::size_t ALPHA = 3; // last in bytes, words and floats

template <typename Code>
void unpremultiply(Code* pixel) {
    constexpr std::uint32_t WHITE = std::numeric_limits<Code>::max();
    const std::uint32_t alpha = pixel[ALPHA];
    for (std::size_t i = 0; alpha > 0 && i < COLORS; ++i) {
        pixel[i] = static_cast<Code>(std::min(WHITE, (pixel[i] * WHITE + alpha / 2) / alpha));
    }
}

/// Calls change(rgba) for all pixels, which need not be aligned.
template <typename Change>
void changeFloats(const Image& image, const Change& change) {
    forEachRow(image.getHeight(), [&](std::size_t y) {
        auto* pixel = static_cast<std::uint8_t*>(image.getRowPtr(y));
        for (std::size_t x = 0; x < image.getWidth(); ++x, pixel += image.getBytePixelStride()) {
            float rgba[4];
            std::memcpy(rgba, pixel, sizeof rgba);
            change(rgba);
            std::memcpy(pixel, rgba, sizeof rgba);
        }
    });
}

} // namespace

void unpremultiplyCodes(const Image& image) {
    forEachRow(image.getHeight(), [&](std::size_t y) {
        auto* pixel = static_cast<std::uint8_t*>(image.getRowPtr(y));
        for (std::size_t x = 0; x < image.getWidth(); ++x, pixel += image.getBytePixelStride()) {
            unpremultiply(pixel);
        }
    });
}

void unpremultiplyCodes(const SampleView<std::uint16_t>& codes) {
    forEachRow(codes.height, [&](std::size_t y) {
        std::uint16_t* pixel = codes.row(y);
        for (std::size_t x = 0; x < codes.width; ++x, pixel += codes.channels) {
            unpremultiply(pixel);
        }
    });
}

void unpremultiplyFloats(const Image& image) {
    changeFloats(image, [](float* rgba) {
        for (std::size_t i = 0; rgba[ALPHA] > 0.0F && i < COLORS; ++i) {
            rgba[i] /= rgba[ALPHA];
        }
    });
}

void premultiplyFloats(const Image& image, Uncovered uncovered) {
    changeFloats(image, [uncovered](float* rgba) {
        const bool isCovered = rgba[ALPHA] > 0.0F;
        for (std::size_t i = 0; i < COLORS; ++i) {
            if (isCovered) {
                rgba[i] *= rgba[ALPHA];
            } else if (uncovered == Uncovered::BLACKED) {
                rgba[i] = 0.0F;
            }
        }
    });
}

} // namespace zqx::img::kernels
