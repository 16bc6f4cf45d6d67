// The pictures that golden results are made from: any size and strides, filled from integers alone, so that they are
// the same bytes wherever they are made.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <zqx/img/Image.h>

#include "unit/support/GuardedImage.h"

namespace golden {

using zqx::img::Image;

/// How a picture lies in memory.
struct Layout {
    std::size_t width;
    std::size_t height;
    std::size_t rowGap = 0;   ///< bytes behind each row
    std::size_t pixelGap = 0; ///< bytes behind each pixel
};

/// What pictures hold.
enum class Content {
    SHADED, ///< bytes: all 256 along a row of each channel; floats: smooth shading with grain, from 2 % to 100 %
    WILD,   ///< bytes: any; floats: colours beyond both ends, corners of single precision, any bits at all
};
inline constexpr Content CONTENTS[] = {Content::SHADED, Content::WILD};

/// What becomes of floats that are not numbers before they are hashed.
enum class NanBits {
    AS_THEY_ARE, ///< where pixels are moved and nothing is computed
    /// Where results are computed: the sign and the payload of a NaN that an operation makes or passes on differ from
    /// processor to processor, and nobody promises them.
    CANONICAL,
};

class Picture {
public:
    /// Every byte outside the pixels is a guard, and hashed with them.
    Picture(const Layout& layout, Image::Format format);
    /// A filled one.
    Picture(const Layout& layout, Image::Format format, Content content, std::uint64_t seed);
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    Image& image() { return mImage; }

    /// All memory of the picture.
    std::vector<std::uint8_t> bytes(NanBits nanBits) const;

private:
    std::vector<std::uint8_t> mMemory;
    test::StridedImage mImage;
};

/// The pixels of any image, row by row, without what lies between.
std::vector<std::uint8_t> pixelBytes(const Image& image, NanBits nanBits);

/// Floats as bytes.
std::vector<std::uint8_t> floatBytes(const std::vector<float>& floats, NanBits nanBits);

/// Odd sizes: single pixels, rows and columns, more than a run of pixels; padded rows among them.
inline constexpr Layout LAYOUTS[] = {{1, 1}, {1, 9, 3}, {11, 1}, {7, 5, 7}, {67, 13}, {513, 3, 5}};

/// The same, and pixels that do not follow each other: for what does not take them to be packed.
inline constexpr Layout STRIDED_LAYOUTS[] = {{1, 1},   {1, 9, 3},   {11, 1},      {7, 5, 7},
                                             {67, 13}, {513, 3, 5}, {33, 3, 2, 3}};

} // namespace golden
