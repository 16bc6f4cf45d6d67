// Builds the whole command line, both for parsing it and for generating its documentation.
#include "commands/CommandLine.h"

#include <CLI/CLI.hpp>

#include "commands/Commands.h"
#include "help/About.h"
#include "help/CommandText.h"

namespace zqx::app {

namespace {

constexpr const char* FOOTER = R"(Examples:
  zqx-img apply in.jpg -o out.jpg --set exposure=0.5 --set saturation=1.2
  zqx-img apply in.png -o out.tif --params look.json --before-after compare.png
  zqx-img compare before.png after.png
  zqx-img apply photos --recursive --output-dir graded --params look.json
  zqx-img preview in.jpg -o sheet.png --sheet warm.json cool.json
  zqx-img histogram in.jpg
  zqx-img denoise noisy.exr --albedo albedo.exr --normal normal.exr -o clean.exr
  zqx-img params --set temperature=5000 -o look.json
  zqx-img lut --params look.json -o look.cube
  zqx-img info in.jpg

"zqx-img COMMAND --help" explains a command. A file name that begins with a dash goes after "--".

Exit codes: 0 success, 1 failure (no file is left half written), 2 invalid command line (nothing was done), 130
interrupted. "zqx-img compare" also has 3 and 4.
)";

} // namespace

std::unique_ptr<CLI::App> makeCommandLine() {
    auto program = std::make_unique<CLI::App>(
        "Adjusts photographs and rendered pictures: exposure, contrast, colour, sharpness, flips, noise.", "zqx-img");
    program->formatter(makeHelpFormatter()); // before the commands, which inherit it
    program->set_help_flag("-h,--help", "Print this text and exit");
    program->set_version_flag("--version", versionText(), "Print version, libraries and instruction set, and exit");
    program->require_subcommand(1);
    program->footer(FOOTER);
    addApplyCommand(*program);
    addCompareCommand(*program);
    addPreviewCommand(*program);
    addHistogramCommand(*program);
    addDenoiseCommand(*program);
    addParamsCommand(*program);
    addLutCommand(*program);
    addInfoCommand(*program);
    addHelpCommand(*program);
    return program;
}

} // namespace zqx::app
