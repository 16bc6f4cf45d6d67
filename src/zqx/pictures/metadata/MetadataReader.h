// Exif, IPTC, XMP and colour profiles out of picture files.
#pragma once

#include <string>

#include "zqx/pictures/Picture.h"
#include "zqx/pictures/metadata/Orientation.h"

namespace zqx::pictures {

/// What a file says of its picture.
struct SourceMetadata {
    Metadata blocks;           ///< upright already, and without what is true of this file only
    int orientation = UPRIGHT; ///< how the stored picture lies
    /// Dots per metre by Exif; 0 where it does not say.
    unsigned dotsPerMeterX = 0;
    unsigned dotsPerMeterY = 0;
};

/// Reads a file's metadata. What is damaged or beyond measure is left out with a warning.
SourceMetadata readMetadata(const std::string& name, FREE_IMAGE_FORMAT format);

} // namespace zqx::pictures
