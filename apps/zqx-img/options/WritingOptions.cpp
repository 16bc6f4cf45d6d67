// The options for writing picture files.
#include "options/WritingOptions.h"

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "options/Validators.h"

namespace zqx::app {

using namespace pictures;

void addWritingOptions(CLI::App& command, pictures::WriteOptions& options) {
    command.add_option("--quality", options.quality, "Quality of JPEG and WebP output, 1 to 100")
        ->check(wholeNumber(1, 100))
        ->type_name("N")
        ->capture_default_str();
    command
        .add_option("--strip", options.strippings,
                    "Leave out the colour profile (icc), exif, xmp or iptc metadata, or all of these and comments")
        ->delimiter(',')
        ->allow_extra_args(false) // otherwise a following INPUT would be taken as another class
        ->check(requireOneOf({"icc", "exif", "xmp", "iptc", "all"}))
        ->type_name("CLASS,...");
}

} // namespace zqx::app
