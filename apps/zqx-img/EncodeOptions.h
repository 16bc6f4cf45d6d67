// How picture files are written: the options that every command which writes them has.
#pragma once

#include <string>
#include <vector>

#include "Picture.h"

namespace CLI {
class App;
}

namespace zqx::img::app {

/// The trade between size and likeness, and what is not to travel from the source into the file.
struct EncodeOptions {
    int quality = 92;                    ///< 1 to 100, for the formats that have one
    std::vector<std::string> strippings; ///< classes of metadata to leave out: icc, exif, xmp, iptc, all

    /// Adds --quality and --strip to a command.
    void addTo(CLI::App& command);

    /// A copy without the classes to leave out.
    Metadata stripped(const Metadata& metadata) const;
};

} // namespace zqx::img::app
