// What FreeImage reads and writes beside pixels: colour profile, comments, resolution.
#pragma once

#include <string>

#include <FreeImage.h>

#include "zqx/pictures/Metadata.h"

namespace zqx::pictures {

/// What a decoder found. Exif, IPTC and XMP are not among it.
Metadata metadataOf(FIBITMAP* bitmap);

/// Gives a bitmap that is about to be encoded what the encoders put into the file.
void attachMetadata(FIBITMAP* bitmap, const Metadata& metadata);

} // namespace zqx::pictures
