// How a stored picture is to be turned before it is looked at: the eight values of Exif's orientation tag.
#pragma once

#include "zqx/pictures/Picture.h"

namespace zqx::pictures {

constexpr int UPRIGHT = 1;

/// True when the orientation exchanges width and height.
bool exchangesSides(int orientation);

/// What has to be done with the stored picture, in words for the user.
const char* describeOrientation(int orientation);

/// Turns the pixels of a picture, every one as it is, and its resolution with them. Values that the standard does not
/// know leave it alone. @throws std::bad_alloc
void turnUpright(Picture& picture, int orientation);

} // namespace zqx::pictures
