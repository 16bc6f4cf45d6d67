// Exif, IPTC and XMP into encoded pictures.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "zqx/pictures/Metadata.h"

namespace zqx::pictures {

/// Takes the bytes of a whole file.
using FileConsumer = std::function<void(std::string_view)>;

/// Hands an encoded picture on with the metadata in it that its format can hold, and warns of what it cannot.
/// @param name the file to be written
/// @param width of the picture in pixels
void writeWithMetadata(const std::string& name, std::string_view encoded, const Metadata& metadata, unsigned width,
                       unsigned height, const FileConsumer& consumer);

} // namespace zqx::pictures
