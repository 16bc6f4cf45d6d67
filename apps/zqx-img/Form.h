// The kinds of bitmap that the program works with, between file formats and image model.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include <FreeImage.h>

#include <zqx/img/Image.h>

namespace zqx::img::app {

struct BitmapUnloader {
    std::shared_ptr<const void> memory; ///< of pixels that are not FreeImage's own

    void operator()(FIBITMAP* bitmap) {
        FreeImage_Unload(bitmap);
        memory.reset();
    }
};
using Bitmap = std::unique_ptr<FIBITMAP, BitmapUnloader>;

/// The bitmaps that the program works with. Each but the last is one format of the image model.
enum class Form { GREY8, RGB8, RGBA8, GREY_FLOAT, RGB_FLOAT, RGBA_FLOAT, PALETTE8 };
constexpr std::size_t FORM_COUNT = static_cast<std::size_t>(Form::PALETTE8) + 1;

bool hasColor(Form form);
bool hasAlpha(Form form);
bool isFloat(Form form);
/// In words for the user, "8-bit grey".
const char* nameOf(Form form);

/// A portable float map stores its bottom row first. FreeImage takes that row for the top one, both ways.
bool isTurnedOver(FREE_IMAGE_FORMAT format);

/// The format of a file to be written, by its extension. @throws UsageError when there is no such format
FREE_IMAGE_FORMAT outputFormat(const std::string& name);

/// The form nearest to the wanted one that the file format holds. @throws Error when it holds none
Form chooseForm(const std::string& name, FREE_IMAGE_FORMAT format, Form wanted);

/// A bitmap of zeros for a form; a palette is made from colours only when the bitmap is written.
Bitmap allocateBitmap(Form form, unsigned width, unsigned height);

/// The bitmap's own memory as an image. Row 0 is the bottom row.
Image viewOf(const Bitmap& bitmap, Form form);

} // namespace zqx::img::app
