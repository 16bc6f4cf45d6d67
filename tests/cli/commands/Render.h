// A small noisy render with its guides, made without a renderer: a ball on a chequered floor, lit from the upper left.
#pragma once

#include <string>
#include <vector>

#include "cli/Pictures.h"

namespace zqx::img::test {

/// Floats of a picture, three a pixel, with rows from the top.
struct Raster {
    unsigned width = 0;
    unsigned height = 0;
    std::vector<float> values;
};

struct Render {
    Raster clean;
    Raster noisy;
    Raster albedo;
    Raster normal;
};

/// 97 x 61 pixels. Neither turning it over nor mirroring it gives the same picture.
const Render& sampleRender();

/// Brings each value of a copy through a function.
template <typename Change>
Raster changed(Raster raster, Change change) {
    for (float& value : raster.values) {
        value = change(value);
    }
    return raster;
}

/// The power 2.2 and its inverse, without limits on either side.
float decoded(float encoded);
float encoded(float linear);

/// What the library makes of a noisy picture, called as a renderer calls it.
Raster denoised(const Raster& noisy, const Raster& albedo, const Raster& normal, bool hdr);

Bitmap floatBitmap(const Raster& raster);

/// A bitmap of 24 bits; 0 to 1 become bytes by rounding.
Bitmap byteBitmap(const Raster& raster);

/// The colours of a bitmap of either kind; bytes become byte / 255.
Raster getRaster(const Bitmap& bitmap);

/// The root of the mean square difference.
double distance(const Raster& a, const Raster& b);

} // namespace zqx::img::test
