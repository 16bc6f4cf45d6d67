// histogram: how often each stored value occurs, as a chart, as characters, or as numbers.
#include <memory>

#include <CLI/CLI.hpp>

#include "commands/Commands.h"
#include "commands/ResultFile.h"
#include "drawing/HistogramChart.h"
#include "options/ParameterOptions.h"
#include "options/ReadingOptions.h"
#include "options/ShowOption.h"
#include "terminal/HistogramText.h"
#include "terminal/Output.h"
#include "terminal/Terminal.h"
#include "zqx/pictures/codecs/Alpha.h"
#include "zqx/pictures/codecs/Decode.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/text/Cleaning.h"
#include "zqx/text/Json.h"
#include "zqx/tools/analysis/Render.h"
#include "zqx/tools/parameters/ParameterTable.h"

namespace zqx::app {

using namespace pictures;
using namespace tools;

namespace {

struct HistogramOptions {
    std::string input;
    std::string output;
    ParameterOptions adjustments;
    LoadOptions loading;
    ShowOption showing;
    bool json = false;
};

std::string subtitleOf(const Picture& picture) {
    return std::to_string(picture.width()) + " x " + std::to_string(picture.height()) + ", " + nameOf(picture.stored);
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
        checkResultFile(options.output, options.input);
    }
    if (options.json && options.showing.wanted()) {
        throw UsageError("--json", "standard output is for the numbers then, leave --show out");
    }
    options.showing.check();
}

void runHistogram(const HistogramOptions& options) {
    checkOptions(options);
    img::ImageProcessingPipeline pipeline = options.adjustments.makePipeline();
    Picture source = loadPicture(options.input, options.loading);
    prepareAlpha(source, FIF_PNG, source.form, true); // counted as straight colours
    connect(pipeline, source);
    const Histogram histogram = countValues(render(pipeline, source, source.form), source.form);
    const std::string title = text::printable(toName(toPath(options.input).filename()));
    if (!options.output.empty() || options.showing.wanted()) {
        const Bitmap chart = drawChart(histogram, title, subtitleOf(source));
        if (!options.output.empty()) {
            writeResultFile(options.output, chart, Form::RGB8, blankOriginal(), EncodeOptions());
        }
        if (options.showing.wanted()) {
            options.showing.show(chart, Form::RGB8);
        }
    } else if (!options.json) {
        print(drawAsText(histogram, title + "  " + subtitleOf(source),
                         {terminalSize(StandardStream::OUTPUT).columns, showsUnicode(), wantsColor()}));
    }
    if (options.json) {
        print(toJson(histogram, options.input, source));
    }
}

constexpr const char* FOOTER = R"(
Counted are the gamma-encoded values, 0 to 255, of each channel, and of luma: the linear light of the channels weighted
by ITU-R BT.709 and encoded. Float pictures (EXR, HDR, PFM, float TIFF) are encoded to the same scale, each value to the
nearest; what is below 0, above 1 or no number is counted apart. Grey pictures have luma alone. Transparency is not
looked at. With --params and --set, the picture is counted after these adjustments.

Without -o, --show and --json the histogram is drawn in characters, as wide as the terminal (or COLUMNS), coloured
unless NO_COLOR is set. Shadows and highlights are the shares of pixels at or beyond the ends of the scale. Drawings are
as high as the most frequent value between the ends; a few values that stand out far above all others are cut off.

Examples:
  zqx-img histogram photo.jpg
  zqx-img histogram photo.jpg --set exposure=0.5 -o histogram.png
  zqx-img histogram render.exr --json

Exit codes: 0 done, 1 something failed, 2 the command line cannot be meant.
)";

} // namespace

void addHistogramCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("histogram", "Draw or count the values of a picture");
    const auto options = std::make_shared<HistogramOptions>();
    command.add_option("INPUT", options->input, "The picture to look at")->type_name("FILE")->required();
    command.add_option("-o,--output", options->output, "Write a chart to this picture file")->type_name("FILE");
    command.add_flag("--json", options->json, "Print the counts of all 256 values of each channel");
    options->showing.addTo(command);
    options->adjustments.addTo(command);
    addReadingOptions(command, options->loading);
    command.footer(describeParameters() + FOOTER);
    command.callback([options] { runHistogram(*options); });
}

} // namespace zqx::app
