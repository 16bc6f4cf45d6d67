// What people want to know of an Exif block.
#pragma once

#include <vector>

#include "zqx/pictures/MetadataCodec.h"

namespace zqx::pictures {

/// @param block as in Metadata; may be empty. @throws Exiv2's exceptions
ExifSummary summarizeByExiv2(const std::vector<unsigned char>& block);

} // namespace zqx::pictures
