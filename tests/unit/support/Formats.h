// The formats as the tests walk over them, and the bridge from images to the oracle's surfaces.
#pragma once

#include <string>

#include <zqx/img/Image.h>

#include "oracle/Pixels.h"

namespace test {

using zqx::img::Image;

constexpr Image::Format ALL_FORMATS[] = {Image::GRAY8,  Image::SGRAY8,  Image::GRAY32F, Image::RGB8,
                                         Image::SRGB8,  Image::RGB32F,  Image::SBGR8,   Image::RGBA8,
                                         Image::SRGBA8, Image::RGBA32F, Image::SBGRA8};

constexpr Image::Format FLOAT_FORMATS[] = {Image::GRAY32F, Image::RGB32F, Image::RGBA32F};

/// The first number behind the known ones, and the last of all.
constexpr Image::Format UNKNOWN_FORMATS[] = {static_cast<Image::Format>(11), static_cast<Image::Format>(0xFFFFFFFFU)};

inline std::string getName(Image::Format format) {
    return oracle::isKnown(format) ? oracle::facts(format).name : "unknown " + std::to_string(format);
}

inline std::string getName(Image::Format source, Image::Format target) {
    return getName(source) + " to " + getName(target);
}

inline oracle::Surface getSurface(const Image& image) {
    return {image.getFormat(),          static_cast<unsigned char*>(image.getDataPtr()),
            image.getWidth(),           image.getHeight(),
            image.getBytePixelStride(), image.getByteRowStride()};
}

/// Calls visit(source, target) for all 121 pairs.
template <typename Visit>
void forAllPairs(Visit visit) {
    for (const Image::Format source : ALL_FORMATS) {
        for (const Image::Format target : ALL_FORMATS) {
            visit(source, target);
        }
    }
}

} // namespace test
