/// @file
/// Comparing pictures.
#pragma once

#include <cstddef>
#include <cstdint>

#include <zqx/pictures/Picture.h>
#include <zqx/tools/Export.h>

namespace zqx::tools {

/// The scale on which pictures are compared.
/// @ingroup tools
struct ComparisonScale {
    bool encoded; ///< stored codes, if neither picture has floats; otherwise linear light
    double white; ///< the value of white: 255, 65535, or 1 for linear light
};

/// The result of a comparison. Differences are in units of the scale, codes or linear light; divide them by the scale's
/// white for a scale on which white is 1.
///
/// Two NaNs count as equal; the difference between a number and NaN is infinite.
/// @ingroup tools
struct Comparison {
    ComparisonScale scale{};           ///< of all differences
    std::uint64_t pixels = 0;          ///< number of pixels in each picture
    std::uint64_t differingPixels = 0; ///< number of pixels that differ in any channel

    double largest = 0.0;    ///< largest difference in any channel of any pixel
    unsigned x = 0;          ///< column of the first such pixel, row by row from the top
    unsigned y = 0;          ///< row of that pixel, 0 at the top
    std::size_t channel = 0; ///< channel of that pixel: 0 red or grey, 1 green, 2 blue, 3 alpha

    double mean = 0.0; ///< mean difference over all channels of all pixels
    double psnr = 0.0; ///< peak signal-to-noise ratio in dB, with white as the peak; infinite for equal pictures
};

/// Whether two pictures have the same size and channels, and so can be compared pixel by pixel.
/// @ingroup tools
ZQX_TOOLS_EXPORT bool isComparable(const pictures::Picture& a, const pictures::Picture& b);

/// Gives both pictures the same kind of alpha: if only one of them is premultiplied, it is unpremultiplied.
/// @ingroup tools
ZQX_TOOLS_EXPORT void alignAlpha(pictures::Picture& a, pictures::Picture& b);

/// Compares pixels as they are stored: 8-bit and 16-bit pictures by their codes, but as linear light if either picture
/// has floats. The result does not depend on the number of threads.
/// @pre the pictures are comparable and have the same kind of alpha
/// @ingroup tools
ZQX_TOOLS_EXPORT Comparison compare(const pictures::Picture& a, const pictures::Picture& b);

/// A picture of the differences, scaled so that the largest one is white and any other is visible. Differences in alpha
/// brighten all channels.
/// @param a the first picture
/// @param b the second picture
/// @param comparison the result of compare() for both
/// @return 8-bit colour or grey
/// @ingroup tools
ZQX_TOOLS_EXPORT pictures::PixelBuffer paintDifferences(const pictures::Picture& a, const pictures::Picture& b,
                                                        const Comparison& comparison);

} // namespace zqx::tools
