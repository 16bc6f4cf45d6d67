// The kinds of bitmap that the program works with, between file formats and image model.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include <FreeImage.h>

#include <zqx/img/Image.h>

namespace zqx::pictures {

struct BitmapUnloader {
    std::shared_ptr<const void> memory; ///< of pixels that are not FreeImage's own

    void operator()(FIBITMAP* bitmap) {
        FreeImage_Unload(bitmap);
        memory.reset();
    }
};
using Bitmap = std::unique_ptr<FIBITMAP, BitmapUnloader>;

/// The kinds of picture files that the program tells apart.
///
/// The first six are worked on as they are, each as one format of the image model. The others are forms of files alone:
/// their bitmaps are made when they are written, 16 bits from linear floats, a palette from 8-bit colour.
enum class Form { GREY8, RGB8, RGBA8, GREY_FLOAT, RGB_FLOAT, RGBA_FLOAT, GREY16, RGB16, RGBA16, PALETTE8 };
constexpr std::size_t FORM_COUNT = static_cast<std::size_t>(Form::PALETTE8) + 1;

/// The form that pictures of a form are worked on in.
Form workingForm(Form form);

bool hasColor(Form form);
bool hasAlpha(Form form);
/// Floats are linear light, all else is encoded.
bool isFloat(Form form);
/// Bits per channel: 8, 16, or 32 for floats.
int depthOf(Form form);
/// In words for the user, "8-bit grey".
const char* nameOf(Form form);

/// A portable float map stores its bottom row first. FreeImage takes that row for the top one, both ways.
bool isTurnedOver(FREE_IMAGE_FORMAT format);

/// The format that a file's extension stands for; FIF_UNKNOWN for none. For any thread.
FREE_IMAGE_FORMAT formatOfName(const std::string& name);

/// The format of a file to be written, by its extension. @throws UsageError when there is no such format
FREE_IMAGE_FORMAT outputFormat(const std::string& name);

/// The form nearest to the wanted one that the file format holds. To lose least, wish for what the source file had and
/// not for what it is worked on in. @throws Error when it holds none
Form chooseForm(const std::string& name, FREE_IMAGE_FORMAT format, Form wanted);

/// A bitmap of zeros for making a picture of a form, itself in the working form.
Bitmap allocateBitmap(Form form, unsigned width, unsigned height);

/// The own memory of a bitmap in a form's working form as an image. Row 0 is the bottom row.
img::Image viewOf(const Bitmap& bitmap, Form form);

} // namespace zqx::pictures
