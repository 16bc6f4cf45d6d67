// Turning pictures upright, in the same way for all file formats.
#include "zqx/pictures/metadata/Orientation.h"

#include <utility>

namespace zqx::pictures {

namespace {

constexpr int LAST_ORIENTATION = 8;

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

void turnUpright(Picture& picture, int orientation) {
    if (exchangesSides(orientation)) {
        const bool clockwise = orientation <= 6;
        picture.pixels = PixelBuffer(clockwise ? picture.image().rotate90() : picture.image().rotate270());
        Resolution& resolution = picture.metadata.resolution;
        std::swap(resolution.x, resolution.y);
    }
    if (orientation == 2 || orientation == 3 || orientation == 5 || orientation == 7) {
        picture.image().flipHorizontal();
    }
    if (orientation == 3 || orientation == 4) {
        picture.image().flipVertical();
    }
}

} // namespace zqx::pictures
