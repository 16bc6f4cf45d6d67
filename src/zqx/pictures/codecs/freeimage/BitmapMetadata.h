// The metadata that FreeImage itself reads and writes: colour profile, comments and resolution.
#pragma once

#include <string>

#include <FreeImage.h>

#include "zqx/pictures/Metadata.h"

namespace zqx::pictures {

/// The metadata that the decoder found, without Exif, IPTC and XMP.
Metadata getMetadata(FIBITMAP* bitmap);

/// Attaches to a bitmap the metadata that its encoder is to write.
void attachMetadata(FIBITMAP* bitmap, const Metadata& metadata);

} // namespace zqx::pictures
