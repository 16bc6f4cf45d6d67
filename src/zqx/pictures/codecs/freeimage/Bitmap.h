// FreeImage's bitmaps, and pixels on the way into and out of them.
#pragma once

#include <memory>

#include <FreeImage.h>

#include "zqx/pictures/PixelBuffer.h"

namespace zqx::pictures {

struct BitmapUnloader {
    void operator()(FIBITMAP* bitmap) const { FreeImage_Unload(bitmap); }
};
using Bitmap = std::unique_ptr<FIBITMAP, BitmapUnloader>;

/// Which end of a bitmap's memory comes first. FreeImage keeps the bottom row first, but takes the rows of portable
/// float maps for those of the other end, both ways.
enum class RowOrder { BOTTOM_FIRST, TOP_FIRST };
RowOrder rowOrderOf(FREE_IMAGE_FORMAT format);

/// A bitmap of zeros. @throws std::bad_alloc
Bitmap allocateBitmap(FREE_IMAGE_TYPE type, unsigned width, unsigned height, int bitsPerPixel = 8);

/// Takes the pixels of a bitmap in a working layout over, where they are.
PixelBuffer takePixels(Bitmap bitmap, RowOrder order);

/// Pixels in the working format of their layout as a bitmap that looks into their memory, whose rows change places.
/// @param pixels have to live as long as the bitmap. @throws std::bad_alloc
Bitmap wrapPixels(PixelBuffer& pixels, RowOrder order);

} // namespace zqx::pictures
