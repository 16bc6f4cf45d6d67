// preview: makes a small version of an adjusted picture, or a contact sheet of several versions.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <zqx/tools/ContactSheet.h>
#include <zqx/tools/MemoryGate.h>
#include <zqx/tools/Resize.h>

#include "commands/Commands.h"
#include "commands/ResultFile.h"
#include "drawing/SheetLabels.h"
#include "options/MemoryOption.h"
#include "options/ParameterOptions.h"
#include "options/ReadingOptions.h"
#include "options/ShowOption.h"
#include "options/Validators.h"
#include "options/WritingOptions.h"
#include "zqx/pictures/Writer.h"
#include "zqx/pictures/codecs/Alpha.h"
#include "zqx/pictures/codecs/Decode.h"
#include "zqx/pictures/codecs/Encode.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/tools/analysis/Render.h"
#include "zqx/tools/analysis/SplitPicture.h"
#include "zqx/tools/batch/OpenPicture.h"
#include "zqx/tools/parameters/ParameterTable.h"

namespace zqx::app {

using namespace pictures;
using namespace tools;

namespace {

constexpr unsigned DEFAULT_SIZE = 1024;
constexpr unsigned DEFAULT_SIZE_ON_SHEET = 480;

struct PreviewOptions {
    std::string input;
    std::string output;
    std::optional<unsigned> size;
    ParameterOptions adjustments;
    std::vector<std::string> sheet; // parameter documents
    ReadOptions loading;
    std::uint64_t memory = 0; ///< the default
    ShowOption showing;
    bool beforeAfter = false;
    WriteOptions encoding;
};

/// Colours are averaged with straight alpha.
Picture loadStraight(const PreviewOptions& options) {
    PictureFile file(options.input, options.loading.limits);
    requireMemory({{memoryInput(file)}, {options.input}}, options.memory); // the preview is at most as large
    Picture picture = readPicture(file, options.loading);
    straightenAlpha(picture);
    return picture;
}

/// The picture downscaled to a size, with everything else unchanged.
Picture reduced(Picture picture, unsigned longestSide) {
    const Size size = {picture.width(), picture.height()};
    if (const Size smaller = fitted(size, longestSide); smaller != size) {
        picture.pixels = areaAverage(picture.image(), smaller);
    }
    return picture;
}

std::string fileStem(const std::string& name) {
    const std::u8string stem = toPath(name).stem().u8string();
    return {stem.begin(), stem.end()};
}

/// The adjustments of one picture on a sheet: its document overrides those of --params, and --set overrides both.
ParameterOptions withDocument(ParameterOptions adjustments, const std::string& document) {
    adjustments.documents.push_back(document);
    return adjustments;
}

/// One pipeline for each document. Warnings about --params and --set are printed once, not once per document.
std::vector<img::ImageProcessingPipeline> sheetPipelines(const PreviewOptions& options) {
    std::vector<std::string> warnings;
    std::vector<img::ImageProcessingPipeline> pipelines;
    {
        const WarningListener listener([&](const std::string& line) {
            if (std::ranges::find(warnings, line) == warnings.end()) {
                warnings.push_back(line);
            }
        });
        for (const std::string& document : options.sheet) {
            pipelines.push_back(withDocument(options.adjustments, document).makePipeline());
        }
    }
    for (const std::string& line : warnings) {
        const std::size_t colon = line.find(": ");
        warn(line.substr(0, colon), line.substr(colon + 2));
    }
    return pipelines;
}

PixelBuffer makeSheet(const PreviewOptions& options, std::vector<img::ImageProcessingPipeline> pipelines,
                      const Picture& source) {
    std::vector<std::string> labels = {"original"};
    for (const std::string& document : options.sheet) {
        labels.push_back(fileStem(document));
    }
    SheetLabels painter;
    ContactSheet sheet(labels, source.width(), source.height(), painter);
    sheet.place(0, source.image());
    for (std::size_t i = 0; i < pipelines.size(); ++i) {
        connect(pipelines[i], source);
        sheet.place(i + 1, render(pipelines[i], source, source.pixels.layout()).image());
    }
    return sheet.take();
}

PixelBuffer makePreview(const PreviewOptions& options, img::ImageProcessingPipeline pipeline, const Picture& source,
                        SampleLayout layout) {
    connect(pipeline, source);
    PixelBuffer result = render(pipeline, source, layout);
    if (options.beforeAfter) {
        splitWith(result, pipeline, source);
    }
    return result;
}

/// Of the metadata of its source a sheet keeps only the colour profile.
Picture originalOfSheet(const Picture& source) {
    Picture original;
    if (hasColor(source.stored) && !isFloat(source.stored)) {
        original.metadata.icc = source.metadata.icc;
    }
    return original;
}

void checkOptions(const PreviewOptions& options) {
    if (options.output.empty() && !options.showing.wanted()) {
        throw UsageError("preview",
                         "missing output; give -o FILE to write the picture, or --show to see it in the terminal");
    }
    if (!options.output.empty()) {
        std::vector<std::string> inputs = options.adjustments.documents;
        inputs.insert(inputs.end(), options.sheet.begin(), options.sheet.end());
        inputs.push_back(options.input);
        checkResultFile(options.output, inputs);
    }
    options.showing.check();
}

/// The format of the output file; what is only shown in the terminal is treated like a PNG.
FileFormat formatFor(const PreviewOptions& options) {
    return options.output.empty() ? FileFormat::PNG : outputFormat(options.output);
}

/// The layout of the output file, or of the pixels if there is no output file.
SampleLayout layoutFor(const PreviewOptions& options, const Picture& source) {
    if (options.output.empty()) {
        return source.pixels.layout();
    }
    const SampleLayout layout = chooseLayout(options.output, formatFor(options), source.stored);
    warnOfLosses(options.output, source, layout);
    return layout;
}

/// @param layout wanted for the output file
void finish(const PreviewOptions& options, const PixelBuffer& result, SampleLayout layout, const Picture& original) {
    if (!options.output.empty()) {
        writeResultFile(options.output, result.image(), layout, original, options.encoding);
    }
    if (options.showing.wanted()) {
        options.showing.show(result.image());
    }
}

void runPreview(const PreviewOptions& options) {
    checkOptions(options);
    if (options.sheet.empty()) {
        const img::ImageProcessingPipeline pipeline = options.adjustments.makePipeline();
        Picture source = reduced(loadStraight(options), options.size.value_or(DEFAULT_SIZE));
        const SampleLayout layout = layoutFor(options, source);
        prepareAlpha(source, formatFor(options), layout, true);
        finish(options, makePreview(options, pipeline, source, layout), layout, source);
    } else {
        const std::vector<img::ImageProcessingPipeline> pipelines = sheetPipelines(options);
        const unsigned size = options.size.value_or(DEFAULT_SIZE_ON_SHEET);
        const Picture source = reduced(loadStraight(options), size);
        finish(options, makeSheet(options, pipelines, source), SampleLayout::RGB8, originalOfSheet(source));
    }
}

constexpr const char* FOOTER = R"(
The picture is first scaled down, each pixel to the mean of its area in linear light, and then adjusted. That is fast,
and colours are those of "apply"; but sharpness is measured in pixels and looks stronger than in the full picture.
Pictures are never enlarged.

A contact sheet shows the original and, for each document of --sheet, the picture with the adjustments of that document,
labelled with its name. These documents are applied on top of --params, and --set on top of all.

Examples:
  zqx-img preview photo.jpg -o small.jpg --set exposure=0.5
  zqx-img preview photo.jpg --show --before-after --params look.json
  zqx-img preview photo.jpg -o sheet.png --sheet warm.json cool.json grey.json --size 640

Exit codes: 0 success, 1 failure, 2 invalid command line.
)";

} // namespace

void addPreviewCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("preview", "Write or show a small version of an adjusted picture");
    const auto options = std::make_shared<PreviewOptions>();
    command.add_option("INPUT", options->input, "The picture to adjust")->type_name("FILE")->required();
    command.add_option("-o,--output", options->output, "The picture to write")->type_name("FILE");
    command
        .add_option("--size", options->size,
                    "Longest side in pixels, 1 to 65500 [1024, or 480 for each picture of a sheet]")
        ->check(wholeNumber(1, 65500))
        ->type_name("N");
    options->showing.addTo(command);
    CLI::Option* sheet =
        command
            .add_option(
                "--sheet", options->sheet,
                "Make a contact sheet with one version for each of these parameter documents; comes after INPUT")
            ->type_name("FILE");
    command.add_flag("--before-after", options->beforeAfter, "Leave the left half unadjusted")->excludes(sheet);
    options->adjustments.addTo(command);
    addReadingOptions(command, options->loading);
    addMemoryOption(command, options->memory);
    addWritingOptions(command, options->encoding);
    command.footer(describeParameters() + FOOTER);
    command.callback([options] { runPreview(*options); });
}

} // namespace zqx::app
