// Working bitmaps into picture files.
#pragma once

#include <string>

#include "zqx/pictures/Picture.h"
#include "zqx/pictures/codecs/EncodeOptions.h"
#include "zqx/pictures/files/OutputFile.h"

namespace zqx::pictures {

/// Warns of what a form cannot keep of a picture, and says what would.
/// @param name the file to be written
/// @param form of that file
void warnOfLosses(const std::string& name, const Picture& source, Form form);

/// Encodes a rendered bitmap, with the profile, resolution and metadata of the picture that it was made from.
/// @param bitmap in the working form of the form
/// @throws Error naming the file
void encodePicture(OutputFile& file, const std::string& name, FREE_IMAGE_FORMAT format, Bitmap bitmap, Form form,
                   const Picture& original, const EncodeOptions& options);

} // namespace zqx::pictures
