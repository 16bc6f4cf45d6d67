// Leaves out the metadata that is not wanted.
#include "zqx/pictures/Writer.h"

#include <algorithm>

namespace zqx::pictures {

Metadata WriteOptions::stripped(const Metadata& metadata) const {
    const auto isWanted = [this](const char* name) {
        return std::ranges::none_of(strippings,
                                    [&](const std::string& stripped) { return stripped == name || stripped == "all"; });
    };
    Metadata result;
    result.resolution = metadata.resolution;
    if (isWanted("icc")) {
        result.icc = metadata.icc;
    }
    if (isWanted("exif")) {
        result.exif = metadata.exif;
    }
    if (isWanted("iptc")) {
        result.iptc = metadata.iptc;
    }
    if (isWanted("xmp")) {
        result.xmp = metadata.xmp;
    }
    if (isWanted("comments")) {
        result.comments = metadata.comments;
    }
    return result;
}

} // namespace zqx::pictures
