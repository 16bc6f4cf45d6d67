// Smaller versions of bitmaps.
#pragma once

#include "zqx/pictures/codecs/Form.h"

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
/// doubles and then to the form. Colour counts by its alpha; where there is none at all, the colour in the middle is
/// kept. A NaN stays within the pixels that cover it.
/// @param form of both bitmaps; not a palette
/// @param size in each direction at least 1 and no more than the bitmap's
pictures::Bitmap areaAverage(const pictures::Bitmap& source, pictures::Form form, Size size);

} // namespace zqx::tools
