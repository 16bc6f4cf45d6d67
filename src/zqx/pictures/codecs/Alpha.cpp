// OpenEXR defines colour as premultiplied ("associated") alpha. A pixel with alpha 0 may still have colour, for example
// the light of a flame: there is nothing to divide it by, and it keeps its values.
#include "zqx/pictures/codecs/Alpha.h"

#include <cstddef>
#include <span>

#include <zqx/img/Color.h>

#include "kernels/Rows.h"

namespace zqx::pictures {

namespace {

/// @param image in RGBA32F
template <typename Change>
void forEachPixel(img::Image& image, const Change& change) {
    img::kernels::forEachRow(image.getHeight(), [&](std::size_t y) {
        for (img::Color& pixel : std::span(static_cast<img::Color*>(image.getRowPtr(y)), image.getWidth())) {
            change(pixel);
        }
    });
}

void unpremultiply(img::Image& image) {
    forEachPixel(image, [](img::Color& pixel) {
        if (pixel.a > 0.0F) {
            pixel.r /= pixel.a;
            pixel.g /= pixel.a;
            pixel.b /= pixel.a;
        }
    });
}

void premultiply(img::Image& image, bool keepLight) {
    forEachPixel(image, [keepLight](img::Color& pixel) {
        if (pixel.a > 0.0F) {
            pixel.r *= pixel.a;
            pixel.g *= pixel.a;
            pixel.b *= pixel.a;
        } else if (!keepLight) {
            pixel.r = pixel.g = pixel.b = 0.0F; // hidden colour, which would begin to shine
        }
    });
}

/// Pictures in other formats are never premultiplied.
bool isRgbaFloat(const img::Image& image) {
    return image.getFormat() == img::Image::RGBA32F;
}

bool holdsPremultiplied(FileFormat format) {
    return format == FileFormat::EXR;
}

} // namespace

void straightenAlpha(Picture& picture) {
    if (picture.alpha == AlphaKind::PREMULTIPLIED && isRgbaFloat(picture.image())) {
        unpremultiply(picture.image());
        picture.alpha = AlphaKind::UNPREMULTIPLIED;
    }
}

void prepareAlpha(Picture& source, FileFormat format, SampleLayout layout, bool recolored) {
    if (hasAlpha(layout) && (recolored || !holdsPremultiplied(format))) {
        straightenAlpha(source);
    } else if (source.alpha == AlphaKind::UNPREMULTIPLIED && isRgbaFloat(source.image())) {
        premultiply(source.image(), true);
        source.alpha = AlphaKind::PREMULTIPLIED;
    }
}

void finishAlpha(img::Image& image, FileFormat format, SampleLayout layout, const Picture& original) {
    if (holdsPremultiplied(format) && layout == SampleLayout::RGBA32F && original.alpha != AlphaKind::PREMULTIPLIED &&
        hasAlpha(original.stored)) {
        premultiply(image, original.alpha == AlphaKind::UNPREMULTIPLIED);
    }
}

} // namespace zqx::pictures
