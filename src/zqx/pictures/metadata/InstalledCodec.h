// Access to the installed metadata codec.
#pragma once

#include "zqx/pictures/MetadataCodec.h"
#include "zqx/pictures/bytes/Probe.h"

namespace zqx::pictures {

/// The metadata that the installed codec reads; without a codec, only the orientation from the header.
FileMetadata readMetadata(ByteSource& file, const Header& header);

/// What an Exif block says about the photograph; nothing without a codec. @throws std::exception if it is damaged
ExifSummary summarizeExif(const std::vector<unsigned char>& exif);

/// Passes an encoded picture on, with the metadata that the installed codec adds. Without a codec, warns about what is
/// left out.
void writeWithMetadata(const std::string& name, std::string_view encoded, const Metadata& metadata, unsigned width,
                       unsigned height, const FileConsumer& consumer);

} // namespace zqx::pictures
