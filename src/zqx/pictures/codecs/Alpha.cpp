// OpenEXR defines colour as premultiplied ("associated") alpha. A pixel with alpha 0 may still have colour, for example
// the light of a flame: there is nothing to divide it by, and it keeps its values.
#include "zqx/pictures/codecs/Alpha.h"

#include "kernels/samples/Premultiply.h"

namespace zqx::pictures {

namespace {

using img::kernels::premultiplyFloats;
using img::kernels::Uncovered;
using img::kernels::unpremultiplyFloats;

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
        unpremultiplyFloats(picture.image());
        picture.alpha = AlphaKind::UNPREMULTIPLIED;
    }
}

void prepareAlpha(Picture& source, FileFormat format, SampleLayout layout, bool recolored) {
    if (hasAlpha(layout) && (recolored || !holdsPremultiplied(format))) {
        straightenAlpha(source);
    } else if (source.alpha == AlphaKind::UNPREMULTIPLIED && isRgbaFloat(source.image())) {
        premultiplyFloats(source.image(), Uncovered::KEPT);
        source.alpha = AlphaKind::PREMULTIPLIED;
    }
}

void finishAlpha(img::Image& image, FileFormat format, SampleLayout layout, const Picture& original) {
    if (holdsPremultiplied(format) && layout == SampleLayout::RGBA32F && original.alpha != AlphaKind::PREMULTIPLIED &&
        hasAlpha(original.stored)) {
        premultiplyFloats(image, original.alpha == AlphaKind::UNPREMULTIPLIED ? Uncovered::KEPT : Uncovered::BLACKED);
    }
}

} // namespace zqx::pictures
