// The pictures of the sample render as floats, and how far one is from another.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <zqx/img/Image.h>

namespace zqx::img::test {

/// Packed pixels of three floats R, G, B; row 0 is the top row.
struct RenderPicture {
    std::size_t width = 0;
    std::size_t height = 0;
    std::vector<float> values;

    Image view() { return {values.data(), width, height, Image::RGB32F, 0}; }
};

/// Reads an OpenEXR file with FreeImage alone, so that the filter is not judged by the library's own loader.
/// @throws std::runtime_error when there is none, or not one of three floats a pixel
RenderPicture readRender(const std::string& file);

/// Black, of the same size.
RenderPicture blackLike(const RenderPicture& picture);

/// What a screen shows of linear values: limited to [0, 1] and encoded with the power 1/2.2.
RenderPicture toneMapped(const RenderPicture& picture);

/// Peak signal-to-noise ratio in decibels over all channels, for values whose peak is 1.
/// @throws std::invalid_argument when the sizes differ
double signalToNoise(const RenderPicture& picture, const RenderPicture& reference);

} // namespace zqx::img::test
