// lut: writes the grading as a .cube file for other programs.
#include <algorithm>
#include <cctype>
#include <memory>

#include <CLI/CLI.hpp>

#include <zqx/tools/CubeFile.h>
#include <zqx/tools/OutputCheck.h>

#include "commands/Commands.h"
#include "options/ParameterOptions.h"
#include "options/Validators.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/FileNames.h"
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

void warnOfOmissions(const img::ImageProcessingPipeline& pipeline) {
    const img::ImageProcessingPipeline neutral(0);
    for (const Parameter& parameter : parameters()) {
        const bool spatial = parameter.name == "sharpness" || parameter.kind == Parameter::Kind::SWITCH;
        if (spatial && parameter.get(pipeline) != parameter.get(neutral)) {
            warn(std::string(parameter.name), "is not part of the grading and is left out of the table");
        }
    }
}

/// A lookup table is text; with another extension it would be taken for something else.
void checkOutput(const LutOptions& options) {
    std::string extension = toName(toPath(options.output).extension());
    std::ranges::transform(extension, extension.begin(), [](unsigned char c) { return std::tolower(c); });
    if (extension != ".cube") {
        throw UsageError(options.output, "lookup tables are written in the .cube format; choose a name that ends in "
                                         ".cube");
    }
    checkOutputs(options.adjustments.documents, {{"--output", options.output}});
    OutputFile::check(options.output);
}

void runLut(const LutOptions& options) {
    checkOutput(options);
    const img::ImageProcessingPipeline pipeline = options.adjustments.makePipeline();
    warnOfOmissions(pipeline);
    writeCubeFile(options.output, pipeline.getColorGrading(), options.table);
}

} // namespace

void addLutCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("lut", "Bake the grading into a 3D lookup table (.cube)");
    const auto options = std::make_shared<LutOptions>();
    command.add_option("-o,--output", options->output, "The table to write")->type_name("FILE.cube")->required();
    options->adjustments.addTo(command);
    command.add_option("--size", options->table.size, "Points along each axis, 2 to 256")
        ->check(wholeNumber(2, 256))
        ->type_name("N")
        ->capture_default_str();
    command.add_flag("--linear", options->table.linear,
                     "Map linear light to linear light, not clipped, instead of encoded values");
    command.add_option("--title", options->table.title, "Title in the table [the name of the file]")->type_name("TEXT");
    command.footer("Only the grading is baked; sharpness, inversion and flips are left out.\n\n" +
                   describeParameters() +
                   "\nExamples:\n  zqx-img lut --params look.json -o look.cube\n"
                   "  ffmpeg -i in.mov -vf lut3d=file=look.cube:interp=tetrahedral out.mov\n"
                   "\nExit codes: 0 success, 1 failure, 2 invalid command line.\n");
    command.callback([options] { runLut(*options); });
}

} // namespace zqx::app
