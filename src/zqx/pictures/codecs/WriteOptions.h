// How picture files are written.
#pragma once

#include <string>
#include <vector>

#include "zqx/pictures/Metadata.h"

namespace zqx::pictures {

/// The trade between size and likeness, and what is not to travel from the source into the file.
struct WriteOptions {
    int quality = 92;                    ///< 1 to 100, for the formats that have one
    std::vector<std::string> strippings; ///< classes of metadata to leave out: icc, exif, xmp, iptc, all

    /// A copy without the classes to leave out.
    Metadata stripped(const Metadata& metadata) const;
};

} // namespace zqx::pictures
