// The whole command line: everything that users can write, in one place for running it and for documenting it.
#include "CommandLine.h"

#include <string>

#include <CLI/CLI.hpp>
#include <FreeImage.h>

#include "Commands.h"

namespace zqx::img::app {

namespace {

constexpr const char* FOOTER = R"(Examples:
  zqx-img apply in.jpg -o out.jpg --set exposure=0.5 --set saturation=1.2
  zqx-img apply in.png -o out.tif --params look.json --before-after compare.png
  zqx-img preview in.jpg -o sheet.png --sheet warm.json cool.json
  zqx-img histogram in.jpg
  zqx-img denoise noisy.exr --albedo albedo.exr --normal normal.exr -o clean.exr
  zqx-img params --set temperature=5000 -o look.json
  zqx-img lut --params look.json -o look.cube
  zqx-img info in.jpg

"zqx-img COMMAND --help" explains a command. A file name that begins with a dash goes after "--".

Exit codes: 0 done, 1 something failed (nothing is left half written), 2 the command line cannot be meant.
)";

} // namespace

std::unique_ptr<CLI::App> makeCommandLine() {
    auto program = std::make_unique<CLI::App>(
        "Adjusts photographs and rendered pictures: exposure, contrast, colour, sharpness, flips, noise.", "zqx-img");
    program->set_version_flag("--version",
                              std::string("zqx-img " ZQX_IMG_VERSION " (FreeImage ") + FreeImage_GetVersion() + ")");
    program->require_subcommand(1);
    program->footer(FOOTER);
    addApplyCommand(*program);
    addPreviewCommand(*program);
    addHistogramCommand(*program);
    addDenoiseCommand(*program);
    addParamsCommand(*program);
    addLutCommand(*program);
    addInfoCommand(*program);
    return program;
}

} // namespace zqx::img::app
