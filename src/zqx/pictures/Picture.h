// A decoded picture.
#pragma once

#include <string>
#include <vector>

#include "zqx/pictures/codecs/Form.h"

namespace zqx::pictures {

/// What travels beside the pixels, each as the block of bytes that its standard describes; empty where there is none.
struct Metadata {
    std::vector<BYTE> icc;  ///< ICC profile
    std::vector<BYTE> exif; ///< TIFF structure, without the "Exif" in front of it; its orientation is upright
    std::vector<BYTE> iptc; ///< IPTC IIM datasets
    std::string xmp;        ///< XMP packet
    std::string comments;   ///< of PNG and JPEG files: keyword and text by turns, a zero byte behind each
};

/// What the colours of a picture with alpha are.
enum class AlphaKind {
    STRAIGHT, ///< independent of alpha
    PRODUCTS, ///< multiplied by alpha, as OpenEXR files hold them: only in RGBA_FLOAT
    DIVIDED,  ///< made straight from products; where alpha is 0 the colour is light of its own
};

/// A picture in one of the working forms, with what has to travel beside its pixels.
struct Picture {
    Bitmap bitmap; ///< in a working form; the resolution is kept in it, too
    Form form;     ///< of the bitmap
    Form stored;   ///< of the file; another one than the bitmap's where that holds 16 bits
    AlphaKind alpha = AlphaKind::STRAIGHT;
    Metadata metadata;

    unsigned width() const { return FreeImage_GetWidth(bitmap.get()); }
    unsigned height() const { return FreeImage_GetHeight(bitmap.get()); }
};

} // namespace zqx::pictures
