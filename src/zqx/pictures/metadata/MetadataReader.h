// Exif, IPTC, XMP and colour profiles out of picture files.
#pragma once

#include <optional>
#include <string>

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/Metadata.h"
#include "zqx/pictures/metadata/Orientation.h"

namespace zqx::pictures {

/// What a file says of its picture.
struct SourceMetadata {
    Metadata blocks;                      ///< upright already, and without what is true of this file only
    int orientation = UPRIGHT;            ///< how the stored picture lies
    std::optional<Resolution> resolution; ///< by Exif, for the upright picture
};

/// Reads a file's metadata. What is damaged or beyond measure is left out with a warning.
SourceMetadata readMetadata(const std::string& name, FileFormat format);

} // namespace zqx::pictures
