// A decoded picture.
#pragma once

#include <vector>

#include "Form.h"

namespace zqx::img::app {

/// A picture in one of the working forms, with what has to travel beside its pixels.
struct Picture {
    Bitmap bitmap;
    Form form;
    std::vector<BYTE> iccProfile;
    bool turnedUpright; ///< by its orientation tag, which the metadata still hold

    unsigned width() const { return FreeImage_GetWidth(bitmap.get()); }
    unsigned height() const { return FreeImage_GetHeight(bitmap.get()); }
};

} // namespace zqx::img::app
