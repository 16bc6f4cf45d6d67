// Metadata by whichever codec is installed.
#pragma once

#include "zqx/pictures/MetadataCodec.h"
#include "zqx/pictures/bytes/Probe.h"

namespace zqx::pictures {

/// What the installed codec reads; without one the orientation that the header tells.
FileMetadata readMetadata(ByteSource& file, const Header& header);

/// What the installed codec makes of an Exif block; nothing without one. @throws std::exception when it
/// is damaged.
ExifSummary summarizeExif(const std::vector<unsigned char>& exif);

/// Hands an encoded picture on, with metadata as far as the installed codec writes it. Without one it warns of what is
/// left out.
void writeWithMetadata(const std::string& name, std::string_view encoded, const Metadata& metadata, unsigned width,
                       unsigned height, const FileConsumer& consumer);

} // namespace zqx::pictures
