// Exif, IPTC and XMP into encoded pictures.
#pragma once

#include <string>
#include <string_view>

#include "zqx/pictures/MetadataCodec.h"

namespace zqx::pictures {

/// Hands an encoded picture on with the metadata in it that its format can hold, and warns of what it cannot.
/// @param name the file to be written
/// @param width of the picture in pixels
void writeByExiv2(const std::string& name, std::string_view encoded, const Metadata& metadata, unsigned width,
                  unsigned height, const FileConsumer& consumer);

} // namespace zqx::pictures
