// The options about writing picture files.
#include "EncodeOptions.h"

#include <algorithm>

#include <CLI/CLI.hpp>

namespace zqx::img::app {

void EncodeOptions::addTo(CLI::App& command) {
    command.add_option("--quality", quality, "Quality of JPEG, WebP and JPEG XR output, 1 to 100")
        ->check(CLI::Range(1, 100))
        ->type_name("N")
        ->capture_default_str();
    command
        .add_option("--strip", strippings,
                    "Leave out the source's colour profile (icc), its exif, xmp or iptc metadata, or all of these and "
                    "its comments")
        ->delimiter(',')
        ->allow_extra_args(false) // or the input file behind it would be taken for another class
        ->check(CLI::IsMember(std::vector<std::string>{"icc", "exif", "xmp", "iptc", "all"}))
        ->type_name("CLASS,...");
}

Metadata EncodeOptions::stripped(const Metadata& metadata) const {
    const auto isWanted = [this](const char* name) {
        return std::ranges::none_of(strippings,
                                    [&](const std::string& stripped) { return stripped == name || stripped == "all"; });
    };
    Metadata result;
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

} // namespace zqx::img::app
