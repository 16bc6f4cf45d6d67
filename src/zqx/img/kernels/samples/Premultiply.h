// Colours multiplied by alpha ("associated", "premultiplied") as files hold them. Here a pixel whose alpha is 0 may
// hold colour all the same: light without a surface, as of a flame. There is nothing to divide it by, and it keeps its
// values. The image model's own rules, which differ, are those of divideByAlpha and multiplyByAlpha in Channels.h.
#pragma once

#include <cstdint>

#include <zqx/img/Image.h>

#include "kernels/samples/SampleView.h"

namespace zqx::img::kernels {

/// Divides stored numbers that are multiplied by alpha, as stored, to the nearest code; what would be more than white
/// is white. @param image of bytes with alpha
void unpremultiplyCodes(const Image& image);
/// The same of 16 bits. @param codes of four channels
void unpremultiplyCodes(const SampleView<std::uint16_t>& codes);

/// Divides colour by alpha where that is more than 0. @param image RGBA32F
void unpremultiplyFloats(const Image& image);

/// Colour of pixels whose alpha is not more than 0, when others are multiplied by it.
enum class Uncovered {
    KEPT,    ///< as light
    BLACKED, ///< hidden colour, which would begin to shine
};

/// Multiplies colour by alpha where that is more than 0. @param image RGBA32F
void premultiplyFloats(const Image& image, Uncovered uncovered);

} // namespace zqx::img::kernels
