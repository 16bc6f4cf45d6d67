// apply: load, adjust, save. The pipeline renders straight from the loaded bitmap into the one to be saved.
#include <filesystem>
#include <memory>

#include <CLI/CLI.hpp>

#include "Commands.h"
#include "Decode.h"
#include "Encode.h"
#include "Error.h"
#include "ParameterTable.h"
#include "QualityOption.h"
#include "Render.h"
#include "SplitPicture.h"

namespace zqx::img::app {

namespace {

using Pipeline = ImageProcessingPipeline;

struct ApplyOptions {
    std::string input;
    std::string output;
    std::string comparison;
    ParameterOptions adjustments;
    LoadOptions loading;
    int quality = DEFAULT_QUALITY;
};

bool isSameFile(const std::string& a, const std::string& b) {
    std::error_code failure;
    return std::filesystem::weakly_canonical(toPath(a), failure) ==
           std::filesystem::weakly_canonical(toPath(b), failure);
}

/// One picture file to be written.
struct Target {
    explicit Target(const std::string& fileName) : name(fileName), format(outputFormat(fileName)) {
        OutputFile::check(name);
    }

    void write(Bitmap bitmap, Form form, const Picture& source, int quality) {
        file = std::make_unique<OutputFile>(name);
        encodePicture(*file, name, format, std::move(bitmap), form, source, quality);
    }

    std::string name;
    FREE_IMAGE_FORMAT format;
    std::unique_ptr<OutputFile> file;
};

void writeTarget(Target& target, const Pipeline& pipeline, const Picture& source, const ApplyOptions& options,
                 bool split) {
    const Form form = chooseForm(target.name, target.format, source.form);
    warnOfLosses(target.name, source, form);
    Bitmap bitmap = render(pipeline, source, form);
    if (split) {
        splitWith(bitmap, form, pipeline, source);
    }
    target.write(std::move(bitmap), form, source, options.quality);
}

void runApply(const ApplyOptions& options) {
    if (!options.comparison.empty() && isSameFile(options.output, options.comparison)) {
        throw UsageError("--before-after", "needs another file than --output");
    }
    std::vector<Target> targets;
    targets.emplace_back(options.output);
    if (!options.comparison.empty()) {
        targets.emplace_back(options.comparison);
    }
    Pipeline pipeline = options.adjustments.makePipeline();
    const Picture source = loadPicture(options.input, options.loading);
    connect(pipeline, source);
    for (Target& target : targets) {
        writeTarget(target, pipeline, source, options, &target != &targets.front());
    }
    // Only now, so that a failure with the second picture leaves the first one as it was, too.
    for (Target& target : targets) {
        target.file->commit();
    }
}

constexpr const char* FOOTER = R"(
The format of OUTPUT follows its extension, that of INPUT its content. Photographs are turned upright. 8-bit pictures
stay 8-bit, float pictures (EXR, HDR, PFM, float TIFF) stay float where the output allows it. Grey pictures stay grey:
of a look that adds colour they take its red. INPUT and OUTPUT may be the same file; OUTPUT appears whole or not at all.
What is left neutral keeps every pixel exactly.

Examples:
  zqx-img apply in.jpg -o out.jpg --set exposure=0.5 --set shadow=0.3 --quality 95
  zqx-img apply in.png -o out.png --params look.json --set saturation=0
  zqx-img apply in.png -o out.png --set gradient.intensity=1 --set gradient.white=1,0.8,0.6
  zqx-img apply in.exr -o out.png --set exposure=-1 --before-after compare.png

Exit codes: 0 done, 1 something failed, 2 the command line cannot be meant.
)";

} // namespace

void addApplyCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("apply", "Adjust a picture file");
    const auto options = std::make_shared<ApplyOptions>();
    command.add_option("INPUT", options->input, "The picture to adjust")->type_name("FILE")->required();
    command.add_option("-o,--output", options->output, "The picture to write")->type_name("FILE")->required();
    options->adjustments.addTo(command);
    options->loading.addTo(command);
    addQualityOption(command, options->quality);
    command
        .add_option("--before-after", options->comparison, "Also write a picture: left half before, right half after")
        ->type_name("FILE");
    command.footer(describeParameters() + FOOTER);
    command.callback([options] { runApply(*options); });
}

} // namespace zqx::img::app
