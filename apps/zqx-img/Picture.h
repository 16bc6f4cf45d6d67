// Pictures between file and image model: what a loaded bitmap is turned into, and what a file format can hold.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <FreeImage.h>

#include <zqx/img/Image.h>

#include "InputFile.h"
#include "OutputFile.h"

namespace zqx::img::app {

struct BitmapUnloader {
    void operator()(FIBITMAP* bitmap) const { FreeImage_Unload(bitmap); }
};
using Bitmap = std::unique_ptr<FIBITMAP, BitmapUnloader>;

/// The bitmaps that the program works with. Each but the last is one format of the image model.
enum class Form { GREY8, RGB8, RGBA8, GREY_FLOAT, RGB_FLOAT, RGBA_FLOAT, PALETTE8 };

bool hasColor(Form form);
bool hasAlpha(Form form);
bool isFloat(Form form);

/// A picture in one of the working forms, with what has to travel beside its pixels.
struct Picture {
    Bitmap bitmap;
    Form form;
    std::vector<BYTE> iccProfile;
    bool turnedUpright; ///< by its orientation tag, which the metadata still hold

    unsigned width() const { return FreeImage_GetWidth(bitmap.get()); }
    unsigned height() const { return FreeImage_GetHeight(bitmap.get()); }
};

/// Decodes a file upright and brings it into the working form that keeps most of it, warning of what is lost.
/// @throws Error naming the file
Picture loadPicture(const std::string& name);

/// Like FreeImage's own loading of a file, but with FreeImage's words in the failure and none for a damaged file.
Bitmap decodeBitmap(InputFile& file, FREE_IMAGE_FORMAT format, int flags);

/// The format of a file to be written, by its extension. @throws UsageError when there is no such format
FREE_IMAGE_FORMAT outputFormat(const std::string& name);

/// The form nearest to the wanted one that the file format holds. @throws Error when it holds none
Form chooseForm(const std::string& name, FREE_IMAGE_FORMAT format, Form wanted);

/// A bitmap of zeros for a form; a palette is made from colours only when the bitmap is written.
Bitmap allocateBitmap(Form form, unsigned width, unsigned height);

/// The bitmap's own memory as an image. Row 0 is the bottom row.
Image viewOf(const Bitmap& bitmap, Form form);

/// Warns of what a form cannot keep of a picture.
/// @param name the file to be written
void warnOfLosses(const std::string& name, const Picture& source, Form form);

/// Encodes a rendered bitmap, with the profile, resolution and metadata of the picture that it was
/// made from.
/// @param quality 1 to 100, for the formats that have one
/// @throws Error naming the file
void encodePicture(OutputFile& file, const std::string& name, FREE_IMAGE_FORMAT format, Bitmap bitmap, Form form,
                   const Picture& original, int quality);

} // namespace zqx::img::app
