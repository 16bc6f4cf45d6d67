// The eight values of the Exif orientation, which says how a stored picture must be turned to be upright.
#pragma once

#include "zqx/pictures/Picture.h"

namespace zqx::pictures {

constexpr int UPRIGHT = 1;

/// Whether turning the picture upright swaps width and height.
bool exchangesSides(int orientation);

/// The orientation of the stored picture in words.
const char* describeOrientation(int orientation);

/// Turns a picture upright, together with its resolution. Pixel values do not change. Orientations that the standard
/// does not define are ignored. @throws std::bad_alloc
void turnUpright(Picture& picture, int orientation);

} // namespace zqx::pictures
