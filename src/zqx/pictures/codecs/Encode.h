// Encoding of rendered pixels into picture files.
#pragma once

#include <string>

#include "zqx/pictures/Export.h"
#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/Picture.h"
#include "zqx/pictures/Writer.h"
#include "zqx/pictures/files/OutputFile.h"

namespace zqx::pictures {

/// Warns about what a picture loses in a layout, and suggests a format that would keep it.
/// @param name the file to be written
/// @param layout of that file
ZQX_PICTURES_EXPORT void warnOfLosses(const std::string& name, const Picture& source, SampleLayout layout);

/// Encodes rendered pixels, with the profile, resolution and metadata of the picture from which they were rendered.
/// @param pixels in the working layout of the layout; consumed
/// @param original its own pixels are not needed any more
/// @throws Error naming the file
ZQX_PICTURES_EXPORT void encodePicture(OutputFile& file, const std::string& name, FileFormat format, PixelBuffer pixels,
                                       SampleLayout layout, const Picture& original, const WriteOptions& options);

} // namespace zqx::pictures
