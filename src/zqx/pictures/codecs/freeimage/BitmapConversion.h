// Conversion of decoded bitmaps of any kind to the six working layouts, and back to the layouts of files.
#pragma once

#include <string>

#include "zqx/pictures/codecs/freeimage/Bitmap.h"

namespace zqx::pictures {

struct ConvertedPixels {
    PixelBuffer pixels;
    SampleLayout stored;
};

/// Converts a bitmap to the working layout that preserves most of it, with warnings about what is lost.
/// @param name of the file, for warnings. @throws Error, std::bad_alloc
ConvertedPixels toWorkingLayout(const std::string& name, Bitmap bitmap, RowOrder order);

/// Converts pixels in the working layout of a file's layout to a bitmap in that layout.
/// @param pixels must outlive the bitmap, which may share their memory. @throws Error, std::bad_alloc
Bitmap toStoredLayout(const std::string& name, PixelBuffer& pixels, SampleLayout layout, RowOrder order);

/// Unpremultiplies the gamma-encoded codes of a bitmap of 8 or 16 bits per channel with alpha.
void unpremultiplyCodes(FIBITMAP* bitmap);

} // namespace zqx::pictures
