// Smaller versions of pictures.
#pragma once

#include "zqx/pictures/PixelBuffer.h"

namespace zqx::tools {

struct Size {
    unsigned width;
    unsigned height;

    bool operator==(const Size&) const = default;
};

/// The size of a picture whose longest side is brought down to a limit; it is never enlarged, and keeps a pixel in
/// each direction however long and narrow it is.
Size fitted(Size size, unsigned longestSide);

/// Each pixel becomes the mean of the area that it covers in the source, in linear light, exact but for the rounding of
/// doubles and then to the format. Colour counts by its alpha; where there is none at all, the colour in the middle is
/// kept. A NaN stays within the pixels that cover it.
/// @param source in the working format of a layout, as the result
/// @param size in each direction at least 1 and no more than the source's
pictures::PixelBuffer areaAverage(const img::Image& source, Size size);

} // namespace zqx::tools
