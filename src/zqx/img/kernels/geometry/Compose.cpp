#include "kernels/geometry/Compose.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <limits>
#include <vector>

#include "kernels/Rows.h"
#include "kernels/filters/Blend.h"
#include "kernels/samples/Codec.h"
#include "kernels/samples/Convert.h"

namespace zqx::img::kernels {

namespace {

/// Blends straight alpha over the ground.
void blendOver(Run& run, std::size_t length, float ground) {
    for (std::size_t i = 0; i < length; ++i) {
        const float alpha = std::clamp(run.a[i], 0.0F, 1.0F);
        if (alpha < 1.0F) { // not so for NaN
            for (float* plane : {run.r, run.g, run.b}) {
                plane[i] = alpha * plane[i] + (1.0F - alpha) * ground;
            }
            run.a[i] = 1.0F;
        }
    }
}

/// The bytes of a white and opaque pixel.
std::vector<std::uint8_t> whitePixel(Format format) {
    const PixelFormat& facts = pixelFormat(format);
    std::vector<std::uint8_t> bytes(facts.byteSize(), std::numeric_limits<std::uint8_t>::max());
    for (std::size_t i = 0; facts.isFloat() && i < facts.elementCount(); ++i) {
        constexpr float WHITE = 1.0F;
        std::memcpy(bytes.data() + i * sizeof WHITE, &WHITE, sizeof WHITE);
    }
    return bytes;
}

} // namespace

void fillRectangle(const Image& image, const Tile& rectangle, std::span<const std::uint8_t> pixel) {
    forEachRow(rectangle.height, [&](std::size_t y) {
        for (std::size_t x = 0; x < rectangle.width; ++x) {
            std::memcpy(image.getPixelPtr(rectangle.x + x, rectangle.y + y), pixel.data(), pixel.size());
        }
    });
}

void placeOver(const Image& source, const Image& target, float ground) {
    if (!isKnown(source.getFormat()) || !isKnown(target.getFormat())) {
        return;
    }
    if (!pixelFormat(source.getFormat()).hasAlpha()) {
        Image view = target;
        bringInto(source, view);
        return;
    }
    const RunReader reader(source.getFormat(), Image::RGBA32F);
    const RunWriter writer(Image::RGBA32F, target.getFormat(), Writing::CACHED);
    const std::size_t from = source.getBytePixelStride();
    const std::size_t to = target.getBytePixelStride();
    forEachRow(source.getHeight(), [&](std::size_t y) {
        const auto* pixels = static_cast<const std::uint8_t*>(source.getRowPtr(y));
        auto* placed = static_cast<std::uint8_t*>(target.getRowPtr(y));
        Run run;
        forEachRun(source.getWidth(), [&](std::size_t first, std::size_t length) {
            reader.read(pixels + first * from, from, length, run);
            blendOver(run, length, ground);
            writer.write(run, length, placed + first * to, to);
        });
    });
}

void splitWith(const Image& left, const Image& image) {
    if (!isKnown(image.getFormat()) || image.getWidth() == 0) {
        return;
    }
    const std::size_t middle = image.getWidth() / 2;
    copyRectangle(left, image, {0, 0, middle, image.getHeight()});
    const std::size_t begin = middle > 0 ? middle - 1 : 0;
    const std::size_t end = std::min(middle + 1, image.getWidth());
    fillRectangle(image, {begin, 0, end - begin, image.getHeight()}, whitePixel(image.getFormat()));
}

} // namespace zqx::img::kernels
