/// @file
/// Downscaling pictures.
#pragma once

#include <zqx/img/Image.h>
#include <zqx/pictures/PixelBuffer.h>
#include <zqx/tools/Export.h>

namespace zqx::tools {

/// The size of a picture in pixels.
/// @ingroup tools
struct Size {
    unsigned width;  ///< in pixels
    unsigned height; ///< in pixels

    /// @{

    /// Compare both directions.
    friend bool operator==(const Size& a, const Size& b) { return a.width == b.width && a.height == b.height; }
    friend bool operator!=(const Size& a, const Size& b) { return !(a == b); }
    /// @}
};

/// The size of a picture after downscaling it so that its longest side does not exceed a limit. Pictures are never
/// enlarged, and both sides keep at least one pixel.
/// @ingroup tools
ZQX_TOOLS_EXPORT Size fitted(Size size, unsigned longestSide);

/// Downscales a picture: each pixel becomes the mean of the area that it covers in the source (box filter).
///
/// Means are computed in linear light with double precision, and rounded to the nearest code in 8-bit pictures. Colours
/// are weighted by alpha, which must be straight; where alpha is 0 throughout, the colour in the middle is kept. NaN
/// affects only the pixels that cover it. The result does not depend on the number of threads.
/// @param source in the working format of a layout, which is also that of the result
/// @param size at least 1 and at most that of the source in each direction
/// @ingroup tools
ZQX_TOOLS_EXPORT pictures::PixelBuffer areaAverage(const img::Image& source, Size size);

} // namespace zqx::tools
