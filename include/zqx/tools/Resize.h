/// @file
/// Smaller versions of pictures.
#pragma once

#include <zqx/img/Image.h>
#include <zqx/pictures/PixelBuffer.h>
#include <zqx/tools/Export.h>

namespace zqx::tools {

/// Columns and rows of a picture.
/// @ingroup tools
struct Size {
    unsigned width;  ///< columns
    unsigned height; ///< rows

    /// @{

    /// Equal in both directions.
    friend bool operator==(const Size& a, const Size& b) { return a.width == b.width && a.height == b.height; }
    friend bool operator!=(const Size& a, const Size& b) { return !(a == b); }
    /// @}
};

/// The size of a picture whose longest side is brought down to a limit. It is never enlarged, and keeps a pixel in each
/// direction however long and narrow it is.
/// @ingroup tools
ZQX_TOOLS_EXPORT Size fitted(Size size, unsigned longestSide);

/// Brings a picture down to a size: each pixel becomes the mean of the area that it covers in the source.
///
/// Means are taken in linear light, exact but for the rounding of doubles and then to the format. Colour counts by its
/// alpha, which is to be straight; where there is none at all, the colour in the middle is kept. What is not a number
/// stays within the pixels that cover it. The result is the same for any number of threads.
/// @param source in the working format of a layout, as the result
/// @param size in each direction at least 1 and no more than the source's
/// @ingroup tools
ZQX_TOOLS_EXPORT pictures::PixelBuffer areaAverage(const img::Image& source, Size size);

} // namespace zqx::tools
