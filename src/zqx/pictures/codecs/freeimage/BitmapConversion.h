// Decoded bitmaps of any kind into pixels of the six working layouts, and back into what files hold.
#pragma once

#include <string>

#include "zqx/pictures/codecs/freeimage/Bitmap.h"

namespace zqx::pictures {

struct ConvertedPixels {
    PixelBuffer pixels;
    SampleLayout stored;
};

/// The pixels of a bitmap in the working layout that keeps most of it, warning of what is lost.
/// @param name of its file. @throws Error, std::bad_alloc
ConvertedPixels toWorkingLayout(const std::string& name, Bitmap bitmap, RowOrder order);

/// A bitmap of a file's layout from pixels of its working layout.
/// @param pixels may be what the bitmap looks into: they have to live as long. @throws Error, std::bad_alloc
Bitmap toStoredLayout(const std::string& name, PixelBuffer& pixels, SampleLayout layout, RowOrder order);

/// Divides the colours of an encoded bitmap, of 8 or 16 bits with alpha, whose stored numbers are multiplied by it.
void unpremultiplyCodes(FIBITMAP* bitmap);

} // namespace zqx::pictures
