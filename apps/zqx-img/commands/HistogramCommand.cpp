// histogram: counts the values of a picture and shows them as a chart, as text or as numbers.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <zqx/tools/MemoryGate.h>

#include "commands/Commands.h"
#include "commands/ResultFile.h"
#include "drawing/HistogramChart.h"
#include "options/MemoryOption.h"
#include "options/ParameterOptions.h"
#include "options/ReadingOptions.h"
#include "options/ShowOption.h"
#include "terminal/HistogramText.h"
#include "terminal/Output.h"
#include "terminal/Terminal.h"
#include "zqx/pictures/codecs/Alpha.h"
#include "zqx/pictures/codecs/Decode.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/FileNames.h"
#include "zqx/text/Cleaning.h"
#include "zqx/text/Json.h"
#include "zqx/tools/analysis/Render.h"
#include "zqx/tools/batch/OpenPicture.h"
#include "zqx/tools/parameters/ParameterTable.h"

namespace zqx::app {

using namespace pictures;
using namespace tools;

namespace {

struct HistogramOptions {
    std::string input;
    std::string output;
    ParameterOptions adjustments;
    ReadOptions loading;
    std::uint64_t memory = 0; ///< the default
    ShowOption showing;
    bool json = false;
};

std::string makeSubtitle(const Picture& picture) {
    return std::to_string(picture.width()) + " x " + std::to_string(picture.height()) + ", " + getName(picture.stored);
}

std::string toJson(const Histogram& histogram, const std::string& name, const Picture& picture) {
    text::JsonWriter json({.indent = 4, .arraysInOneLine = true});
    json.beginObject();
    json.member("file", name);
    json.member("width", picture.width());
    json.member("height", picture.height());
    json.key("channels");
    json.beginObject();
    for (std::size_t i = 0; i < histogram.present().size(); ++i) {
        const ChannelCounts& counts = histogram.present()[i];
        json.key(histogram.names()[i]);
        json.beginObject();
        json.key("bins");
        json.beginArray();
        for (const std::uint64_t count : counts.bins) {
            json.value(count);
        }
        json.endArray();
        json.member("below", counts.below);
        json.member("above", counts.above);
        json.member("nan", counts.nan);
        json.endObject();
    }
    json.endObject();
    json.endObject();
    return json.text() + "\n";
}

void checkOptions(const HistogramOptions& options) {
    if (!options.output.empty()) {
        std::vector<std::string> inputs = options.adjustments.documents;
        inputs.push_back(options.input);
        checkResultFile(options.output, inputs);
    }
    if (options.json && options.showing.wanted()) {
        throw UsageError("--json", "cannot be combined with --show: both write to standard output");
    }
    options.showing.check();
}

void runHistogram(const HistogramOptions& options) {
    checkOptions(options);
    img::ImageProcessingPipeline pipeline = options.adjustments.makePipeline();
    PictureFile file(options.input, options.loading.limits);
    // The adjusted picture is as large as the input.
    requireMemory({{memoryInput(file)}, {options.input}}, options.memory);
    Picture source = readPicture(file, options.loading);
    straightenAlpha(source);
    connect(pipeline, source);
    const Histogram histogram = countValues(render(pipeline, source, source.pixels.layout()).image());
    const std::string title = text::printable(toName(toPath(options.input).filename()));
    if (!options.output.empty() || options.showing.wanted()) {
        const PixelBuffer chart = drawChart(histogram, title, makeSubtitle(source));
        if (!options.output.empty()) {
            writeResultFile(options.output, chart.image(), SampleLayout::RGB8, Picture(), WriteOptions());
        }
        if (options.showing.wanted()) {
            options.showing.show(chart.image());
        }
    } else if (!options.json) {
        print(drawAsText(histogram, title + "  " + makeSubtitle(source),
                         {terminalSize(StandardStream::OUTPUT).columns, showsUnicode(), wantsColor()}));
    }
    if (options.json) {
        print(toJson(histogram, options.input, source));
    }
}

constexpr const char* FOOTER = R"(
The histogram counts the gamma-encoded values, 0 to 255, of each channel and of luma, the weighted sum of linear light
by ITU-R BT.709, encoded. Values of float pictures (EXR, HDR, PFM, float TIFF) are encoded and rounded to the same
scale; those below 0, above 1 and NaN are counted separately. Grey pictures have luma only. Transparency is ignored.
The adjustments of --params and --set are applied first.

Without -o, --show and --json the histogram is drawn with characters, as wide as the terminal (or COLUMNS), in colour
unless NO_COLOR is set. Shadows and highlights are the shares of pixels at or beyond the ends of the scale. The vertical
scale is set by the most frequent value between the ends; a few values that stand out far above all others are cut off.

Examples:
  zqx-img histogram photo.jpg
  zqx-img histogram photo.jpg --set exposure=0.5 -o histogram.png
  zqx-img histogram render.exr --json

Exit codes: 0 success, 1 failure, 2 invalid command line.
)";

} // namespace

void addHistogramCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("histogram", "Draw or count the distribution of values");
    const auto options = std::make_shared<HistogramOptions>();
    command.add_option("INPUT", options->input, "The picture to analyse")->type_name("FILE")->required();
    command.add_option("-o,--output", options->output, "Write a chart as a picture")->type_name("FILE");
    command.add_flag("--json", options->json, "Print the counts of all 256 values of each channel");
    options->showing.addTo(command);
    options->adjustments.addTo(command);
    addReadingOptions(command, options->loading);
    addMemoryOption(command, options->memory);
    command.footer(describeParameters() + FOOTER);
    command.callback([options] { runHistogram(*options); });
}

} // namespace zqx::app
