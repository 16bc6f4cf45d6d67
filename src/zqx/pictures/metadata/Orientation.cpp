// Turning bitmaps upright, the same way for all file formats.
#include "zqx/pictures/metadata/Orientation.h"

#include <new>

namespace zqx::pictures {

namespace {

constexpr int LAST_ORIENTATION = 8;

void rotate(Bitmap& bitmap, double degreesAnticlockwise) {
    const unsigned x = FreeImage_GetDotsPerMeterX(bitmap.get());
    const unsigned y = FreeImage_GetDotsPerMeterY(bitmap.get());
    bitmap.reset(FreeImage_Rotate(bitmap.get(), degreesAnticlockwise, nullptr));
    if (!bitmap) {
        throw std::bad_alloc();
    }
    FreeImage_SetDotsPerMeterX(bitmap.get(), y);
    FreeImage_SetDotsPerMeterY(bitmap.get(), x);
}

} // namespace

bool exchangesSides(int orientation) {
    return orientation >= 5 && orientation <= LAST_ORIENTATION;
}

const char* describeOrientation(int orientation) {
    static constexpr const char* NAMES[] = {"upright",
                                            "mirrored",
                                            "turned by 180 degrees",
                                            "mirrored top to bottom",
                                            "mirrored, to be turned by 270 degrees clockwise",
                                            "to be turned by 90 degrees clockwise",
                                            "mirrored, to be turned by 90 degrees clockwise",
                                            "to be turned by 270 degrees clockwise"};
    return orientation >= 1 && orientation <= LAST_ORIENTATION ? NAMES[orientation - 1] : "not a known value";
}

void turnUpright(Bitmap& bitmap, int orientation) {
    constexpr double CLOCKWISE = -90.0;
    if (exchangesSides(orientation)) {
        rotate(bitmap, orientation <= 6 ? CLOCKWISE : -CLOCKWISE);
    }
    if (orientation == 2 || orientation == 3 || orientation == 5 || orientation == 7) {
        FreeImage_FlipHorizontal(bitmap.get());
    }
    if (orientation == 3 || orientation == 4) {
        FreeImage_FlipVertical(bitmap.get());
    }
}

} // namespace zqx::pictures
