#include "PixelCopy.h"

#include <cstring>
#include <map>
#include <stdexcept>
#include <utility>

#include <FreeImage.h>

#include <tov/Runtime.h>

namespace zqx::img::test {

namespace {

void require(tov::Result result) {
    if (tov::failed(result)) {
        throw std::runtime_error("the component refused");
    }
}

int numberFrom(IFreeImage& component, tov::Result (IFreeImage::*getter)(int*)) {
    int value = 0;
    require((component.*getter)(&value));
    return value;
}

BYTE* lineFromTop(IFreeImage& component, int height, int y) {
    void* line = nullptr;
    require(component.getScanline(height - 1 - y, &line));
    return static_cast<BYTE*>(line);
}

/// Bytes of colour are stored as B, G, R; wider samples as R, G, B.
int storedAt(int channel, int channels, Depth depth) {
    return depth == Depth::BYTE && channels >= 3 && channel < 3 ? 2 - channel : channel;
}

/// Number of channels and their depth by data type, for the types whose samples lie side by side.
std::pair<int, Depth> getLayout(int type, int bitsPerPixel) {
    switch (type) {
    case FIT_BITMAP: return {bitsPerPixel / 8, Depth::BYTE};
    case FIT_UINT16: return {1, Depth::WORD};
    case FIT_RGB16: return {3, Depth::WORD};
    case FIT_RGBA16: return {4, Depth::WORD};
    case FIT_FLOAT: return {1, Depth::FLOAT};
    case FIT_RGBF: return {3, Depth::FLOAT};
    case FIT_RGBAF: return {4, Depth::FLOAT};
    default: throw std::runtime_error("no such type in these tests");
    }
}

int typeFor(const Samples& samples) {
    static const std::map<std::pair<Depth, int>, int> TYPES = {
        {{Depth::WORD, 1}, FIT_UINT16}, {{Depth::WORD, 3}, FIT_RGB16}, {{Depth::WORD, 4}, FIT_RGBA16},
        {{Depth::FLOAT, 1}, FIT_FLOAT}, {{Depth::FLOAT, 3}, FIT_RGBF}, {{Depth::FLOAT, 4}, FIT_RGBAF},
    };
    const auto found = TYPES.find({samples.depth, samples.channels});
    return found == TYPES.end() ? static_cast<int>(FIT_BITMAP) : found->second;
}

/// Calls action(stored bytes, index of the sample) for every sample.
template <typename Action>
void forEachSample(IFreeImage& component, const Samples& shape, const Action& action) {
    const auto size = static_cast<std::ptrdiff_t>(shape.depth);
    std::size_t index = 0;
    for (int y = 0; y < shape.height; ++y) {
        BYTE* line = lineFromTop(component, shape.height, y);
        for (int x = 0; x < shape.width; ++x) {
            for (int channel = 0; channel < shape.channels; ++channel, ++index) {
                action(line + size * (x * shape.channels + storedAt(channel, shape.channels, shape.depth)), index);
            }
        }
    }
}

Samples paletteColours(IFreeImage& component, int width, int height, int bitsPerPixel) {
    tov::Sequence<qutil::EColor3f> palette = {};
    require(component.getPalette(&palette));
    Samples samples = blank(width, height, 3, Depth::BYTE);
    std::size_t index = 0;
    for (int y = 0; y < height; ++y) {
        const BYTE* line = lineFromTop(component, height, y);
        for (int x = 0; x < width; ++x) {
            const int bit = x * bitsPerPixel;
            const int shift = 8 - bitsPerPixel - bit % 8; // the leftmost pixel is in the highest bits
            const qutil::EColor3f& colour = palette.data[(line[bit / 8] >> shift) & ((1 << bitsPerPixel) - 1)];
            for (const float value : {colour.r, colour.g, colour.b}) {
                samples.set(index++, value * 255.0F + 0.5F);
            }
        }
    }
    tov::tovFree(palette.data);
    return samples;
}

} // namespace

Samples getSamples(IFreeImage& component) {
    const int width = numberFrom(component, &IFreeImage::getWidth);
    const int height = numberFrom(component, &IFreeImage::getHeight);
    const int type = numberFrom(component, &IFreeImage::getDataType);
    const int bitsPerPixel = numberFrom(component, &IFreeImage::getBitsPerPixel);
    if (type == FIT_BITMAP && bitsPerPixel <= 8) {
        return paletteColours(component, width, height, bitsPerPixel);
    }
    const auto [channels, depth] = getLayout(type, bitsPerPixel);
    Samples samples = blank(width, height, channels, depth);
    const auto size = static_cast<std::size_t>(depth);
    forEachSample(component, samples, [&](const BYTE* stored, std::size_t index) {
        std::memcpy(samples.bytes.data() + index * size, stored, size);
    });
    return samples;
}

Component getComponent(const Samples& samples) {
    Component component = makeComponent();
    const int bitsPerPixel = samples.channels * static_cast<int>(samples.depth) * 8;
    require(component->allocate(typeFor(samples), samples.width, samples.height, bitsPerPixel));
    const auto size = static_cast<std::size_t>(samples.depth);
    forEachSample(*component, samples, [&](BYTE* stored, std::size_t index) {
        std::memcpy(stored, samples.bytes.data() + index * size, size);
    });
    return component;
}

} // namespace zqx::img::test
