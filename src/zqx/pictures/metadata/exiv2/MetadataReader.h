// Exif, IPTC, XMP and colour profiles out of picture files.
#pragma once

#include "zqx/pictures/MetadataCodec.h"

namespace zqx::pictures {

/// Reads a file's metadata. What is damaged or beyond measure is left out with a warning.
FileMetadata readByExiv2(ByteSource& file, FileFormat format);

} // namespace zqx::pictures
