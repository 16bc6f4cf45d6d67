// FreeImage's bitmaps, and the transfer of pixels to and from them.
#pragma once

#include <memory>

#include <FreeImage.h>

#include "zqx/pictures/PixelBuffer.h"

namespace zqx::pictures {

struct BitmapUnloader {
    void operator()(FIBITMAP* bitmap) const { FreeImage_Unload(bitmap); }
};
using Bitmap = std::unique_ptr<FIBITMAP, BitmapUnloader>;

/// The order of the rows in a bitmap's memory. FreeImage stores the bottom row first, except that it reads and writes
/// portable float maps upside down.
enum class RowOrder { BOTTOM_FIRST, TOP_FIRST };
RowOrder getRowOrder(FREE_IMAGE_FORMAT format);

/// Allocates a bitmap filled with zeros. @throws std::bad_alloc
Bitmap allocateBitmap(FREE_IMAGE_TYPE type, unsigned width, unsigned height, int bitsPerPixel = 8);

/// Takes over the pixels of a bitmap in a working layout, without copying them.
PixelBuffer takePixels(Bitmap bitmap, RowOrder order);

/// Wraps pixels in the working format of their layout in a bitmap, without copying them. Their rows are reordered in
/// place.
/// @param pixels must outlive the bitmap. @throws std::bad_alloc
Bitmap wrapPixels(PixelBuffer& pixels, RowOrder order);

} // namespace zqx::pictures
