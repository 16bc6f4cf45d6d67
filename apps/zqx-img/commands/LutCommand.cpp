// lut: the grading as a .cube table, for programs that know nothing of this library.
#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <vector>

#include <CLI/CLI.hpp>

#include "commands/Commands.h"
#include "options/ParameterOptions.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/InputFile.h"
#include "zqx/pictures/files/OutputFile.h"
#include "zqx/text/Cleaning.h"
#include "zqx/text/Numbers.h"
#include "zqx/tools/parameters/ParameterTable.h"

namespace zqx::app {

using namespace pictures;
using namespace tools;

namespace {

constexpr double GAMMA = 2.2;

struct LutOptions {
    ParameterOptions adjustments;
    std::string output;
    std::string title;
    std::size_t size = 33;
    bool linear = false;
};

/// Grades the lattice of gamma-encoded colours, in floats throughout: tables of bytes would band in shadows.
std::vector<float> bakeEncoded(const img::ColorGrading& grading, std::size_t size) {
    std::vector<float> axis(size);
    for (std::size_t i = 0; i < size; ++i) {
        axis[i] = static_cast<float>(std::pow(static_cast<double>(i) / static_cast<double>(size - 1), GAMMA));
    }
    std::vector<float> table(3 * size * size * size);
    for (std::size_t i = 0; i < table.size(); i += 3) {
        const std::size_t point = i / 3;
        table[i] = axis[point % size];
        table[i + 1] = axis[point / size % size];
        table[i + 2] = axis[point / size / size];
    }
    img::Image lattice(table.data(), size * size, size, img::Image::RGB32F, 0);
    grading.apply(lattice, lattice);
    for (float& value : table) {
        value = static_cast<float>(std::pow(std::clamp(static_cast<double>(value), 0.0, 1.0), 1.0 / GAMMA));
    }
    return table;
}

std::vector<float> bake(const img::ColorGrading& grading, const LutOptions& options) {
    if (!options.linear) {
        return bakeEncoded(grading, options.size);
    }
    std::vector<float> table(3 * options.size * options.size * options.size);
    grading.generate3DLUT_RGB32F(options.size, table.data());
    return table;
}

/// Plain decimals that read back as the same float; not every reader of the format knows exponents.
void appendNumber(std::string& line, float value) {
    // A black without hue grades to NaN where hues are turned. Black is what it has to become in a table.
    const float finite =
        std::isnan(value) ? 0.0F
                          : std::clamp(value, std::numeric_limits<float>::lowest(), std::numeric_limits<float>::max());
    line += text::shortestDecimal(finite);
}

std::string titleLine(const LutOptions& options) {
    std::string title = options.title;
    if (title.empty()) {
        title = toName(toPath(options.output).stem());
    }
    title = text::inOneLine(title);
    std::ranges::replace(title, '"', '\'');
    return "TITLE \"" + title + "\"\n";
}

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
    const std::vector<float> table = bake(pipeline.getColorGrading(), options);
    OutputFile file(options.output);
    file.write(titleLine(options) + "LUT_3D_SIZE " + std::to_string(options.size) +
               "\nDOMAIN_MIN 0 0 0\nDOMAIN_MAX 1 1 1\n");
    std::string line;
    for (std::size_t i = 0; i < table.size() && !file.hasFailed(); i += 3) {
        line.clear();
        for (std::size_t channel = 0; channel < 3; ++channel) {
            appendNumber(line, table[i + channel]);
            line += channel < 2 ? ' ' : '\n';
        }
        file.write(line);
    }
    file.commit();
}

} // namespace

void addLutCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("lut", "Bake the grading into a 3D lookup table (.cube)");
    const auto options = std::make_shared<LutOptions>();
    command.add_option("-o,--output", options->output, "The table to write")->type_name("FILE.cube")->required();
    options->adjustments.addTo(command);
    command.add_option("--size", options->size, "Points along each axis, 2 to 256")
        ->check(CLI::Range(2, 256))
        ->type_name("N")
        ->capture_default_str();
    command.add_flag("--linear", options->linear,
                     "For linear light in and out, without limits, instead of pictures as stored");
    command.add_option("--title", options->title, "Title in the table; the file's name when not given")
        ->type_name("TEXT");
    command.footer("Only the grading is baked: sharpness, inversion and flips are left out.\n\n" +
                   describeParameters() +
                   "\nExamples:\n  zqx-img lut --params look.json -o look.cube\n"
                   "  ffmpeg -i in.mov -vf lut3d=file=look.cube:interp=tetrahedral out.mov\n"
                   "\nExit codes: 0 done, 1 something failed, 2 the command line cannot be meant.\n");
    command.callback([options] { runLut(*options); });
}

} // namespace zqx::app
