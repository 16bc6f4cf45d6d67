// lut: the grading as a .cube table, for programs that know nothing of this library.
#include <memory>

#include <CLI/CLI.hpp>

#include <zqx/tools/CubeFile.h>

#include "commands/Commands.h"
#include "options/ParameterOptions.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/OutputFile.h"
#include "zqx/tools/parameters/ParameterTable.h"

namespace zqx::app {

using namespace pictures;
using namespace tools;

namespace {

struct LutOptions {
    ParameterOptions adjustments;
    std::string output;
    CubeOptions table;
};

void warnOfWhatIsLeftOut(const img::ImageProcessingPipeline& pipeline) {
    const img::ImageProcessingPipeline neutral(0);
    for (const Parameter& parameter : parameters()) {
        const bool spatial = parameter.name == "sharpness" || parameter.kind == Parameter::Kind::SWITCH;
        if (spatial && parameter.get(pipeline) != parameter.get(neutral)) {
            warn(std::string(parameter.name), "is not part of the grading and is left out of the table");
        }
    }
}

void runLut(const LutOptions& options) {
    OutputFile::check(options.output);
    const img::ImageProcessingPipeline pipeline = options.adjustments.makePipeline();
    warnOfWhatIsLeftOut(pipeline);
    writeCubeFile(options.output, pipeline.getColorGrading(), options.table);
}

} // namespace

void addLutCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("lut", "Bake the grading into a 3D lookup table (.cube)");
    const auto options = std::make_shared<LutOptions>();
    command.add_option("-o,--output", options->output, "The table to write")->type_name("FILE.cube")->required();
    options->adjustments.addTo(command);
    command.add_option("--size", options->table.size, "Points along each axis, 2 to 256")
        ->check(CLI::Range(2, 256))
        ->type_name("N")
        ->capture_default_str();
    command.add_flag("--linear", options->table.linear,
                     "For linear light in and out, without limits, instead of pictures as stored");
    command.add_option("--title", options->table.title, "Title in the table; the file's name when not given")
        ->type_name("TEXT");
    command.footer("Only the grading is baked: sharpness, inversion and flips are left out.\n\n" +
                   describeParameters() +
                   "\nExamples:\n  zqx-img lut --params look.json -o look.cube\n"
                   "  ffmpeg -i in.mov -vf lut3d=file=look.cube:interp=tetrahedral out.mov\n"
                   "\nExit codes: 0 done, 1 something failed, 2 the command line cannot be meant.\n");
    command.callback([options] { runLut(*options); });
}

} // namespace zqx::app
