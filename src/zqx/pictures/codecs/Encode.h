// Pictures into files.
#pragma once

#include <string>

#include "zqx/pictures/Export.h"
#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/Picture.h"
#include "zqx/pictures/Writer.h"
#include "zqx/pictures/files/OutputFile.h"

namespace zqx::pictures {

/// Warns of what a layout cannot keep of a picture, and says what would.
/// @param name the file to be written
/// @param layout of that file
ZQX_PICTURES_EXPORT void warnOfLosses(const std::string& name, const Picture& source, SampleLayout layout);

/// Encodes rendered pixels, with the profile, resolution and metadata of the picture that they were made from.
/// @param pixels in the working layout of the layout; used up
/// @param original may have given its own pixels up
/// @throws Error naming the file
ZQX_PICTURES_EXPORT void encodePicture(OutputFile& file, const std::string& name, FileFormat format, PixelBuffer pixels,
                                       SampleLayout layout, const Picture& original, const WriteOptions& options);

} // namespace zqx::pictures
