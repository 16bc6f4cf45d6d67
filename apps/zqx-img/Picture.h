// A decoded picture.
#pragma once

#include <string>
#include <vector>

#include "Form.h"

namespace zqx::img::app {

/// What travels beside the pixels, each as the block of bytes that its standard describes; empty where there is none.
struct Metadata {
    std::vector<BYTE> icc;  ///< ICC profile
    std::vector<BYTE> exif; ///< TIFF structure, without the "Exif" in front of it; its orientation is upright
    std::vector<BYTE> iptc; ///< IPTC IIM datasets
    std::string xmp;        ///< XMP packet
    std::string comments;   ///< of PNG and JPEG files: keyword and text by turns, a zero byte behind each
};

/// A picture in one of the working forms, with what has to travel beside its pixels.
struct Picture {
    Bitmap bitmap; ///< in a working form; the resolution is kept in it, too
    Form form;     ///< of the bitmap
    Form stored;   ///< of the file; another one than the bitmap's where that has more depth
    Metadata metadata;

    unsigned width() const { return FreeImage_GetWidth(bitmap.get()); }
    unsigned height() const { return FreeImage_GetHeight(bitmap.get()); }
};

} // namespace zqx::img::app
