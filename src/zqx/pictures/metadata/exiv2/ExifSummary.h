// What people want to know of an Exif block.
#pragma once

#include <string>
#include <vector>

namespace zqx::pictures {

struct ExifField {
    const char* label; ///< for people
    const char* key;   ///< for programs
    std::string value;
};

struct ExifSummary {
    std::vector<ExifField> fields; ///< camera, lens, time and exposure, as far as they are there
    bool hasPosition = false;      ///< tells where the picture was taken
};

/// @param block as in Metadata; may be empty
ExifSummary summarizeExif(const std::vector<unsigned char>& block);

} // namespace zqx::pictures
