/// @file
/// How far two pictures are from each other.
#pragma once

#include <cstddef>
#include <cstdint>

#include <zqx/pictures/Picture.h>
#include <zqx/tools/Export.h>

namespace zqx::tools {

/// The numbers that pictures are compared by.
/// @ingroup tools
struct ComparisonScale {
    bool encoded; ///< the stored codes, when neither picture is of floats; otherwise linear light
    double white; ///< the number that stands for 1: 255, 65535, or 1 for linear light
};

/// What a comparison finds. Differences are in units of the scale: codes, or linear light. Divided by the scale's white
/// they are on one on which white is 1.
///
/// Two values that are not numbers count as equal; a number and what is none are infinitely far apart.
/// @ingroup tools
struct Comparison {
    ComparisonScale scale{};           ///< that all numbers are on
    std::uint64_t pixels = 0;          ///< in each of the two
    std::uint64_t differingPixels = 0; ///< with any difference in any channel

    double largest = 0.0;    ///< difference of any channel of any pixel
    unsigned x = 0;          ///< of the first pixel that has it, by rows from the top
    unsigned y = 0;          ///< its row, 0 on top
    std::size_t channel = 0; ///< of that pixel: 0 red or grey, 1 green, 2 blue, 3 alpha

    double mean = 0.0; ///< difference of all channels of all pixels
    double psnr = 0.0; ///< peak signal-to-noise ratio in decibels, the peak being white; infinite for equal pictures
};

/// False for pictures of different size or channels, which have no pixels to be compared.
/// @ingroup tools
ZQX_TOOLS_EXPORT bool isComparable(const pictures::Picture& a, const pictures::Picture& b);

/// Gives both pictures the same kind of alpha: where one is premultiplied and the other is not, it is unpremultiplied.
/// @ingroup tools
ZQX_TOOLS_EXPORT void alignAlpha(pictures::Picture& a, pictures::Picture& b);

/// Compares pixels as they are stored: 8-bit and 16-bit pictures with each other by their codes, an encoded picture and
/// one of floats as linear light. The result is the same for any number of threads.
/// @pre the pictures are comparable and of the same kind of alpha
/// @ingroup tools
ZQX_TOOLS_EXPORT Comparison compare(const pictures::Picture& a, const pictures::Picture& b);

/// A picture of the differences, so much brighter that the largest one is white and any at all is to be seen.
/// Differences of alpha brighten all channels.
/// @param a one picture
/// @param b the other
/// @param comparison of the same two
/// @return 8-bit colour or grey
/// @ingroup tools
ZQX_TOOLS_EXPORT pictures::PixelBuffer paintDifferences(const pictures::Picture& a, const pictures::Picture& b,
                                                        const Comparison& comparison);

} // namespace zqx::tools
