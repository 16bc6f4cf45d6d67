// apply: load, adjust, save. The pipeline renders straight from the loaded bitmap into the one to be saved.
#include <algorithm>
#include <filesystem>
#include <limits>
#include <memory>

#include <CLI/CLI.hpp>

#include "Commands.h"
#include "Decode.h"
#include "Encode.h"
#include "Error.h"
#include "ParameterTable.h"

namespace zqx::img::app {

namespace {

using Pipeline = ImageProcessingPipeline;

struct ApplyOptions {
    std::string input;
    std::string output;
    std::string comparison;
    ParameterOptions adjustments;
    LoadOptions loading;
    EncodeOptions encoding;
};

bool isNeutral(ColorGrading grading) {
    if (grading.getGradientMapIntensity() == 0.0F) {
        grading.setGradientMap(ColorGradient()); // has no say
    }
    return grading.compare(ColorGrading()) == 0;
}

/// The stages that have work to do. Neutral grading still moves 8-bit codes, so it has to be left out to keep pixels.
int neededStages(const Pipeline& pipeline) {
    const int always = Pipeline::STAGE_INVERSION | Pipeline::STAGE_SHARPEN | Pipeline::STAGE_FLIP;
    return isNeutral(pipeline.getColorGrading()) ? always : always | Pipeline::STAGE_COLOR_GRADING;
}

Bitmap render(const Pipeline& pipeline, const Picture& source, Form form) {
    Bitmap bitmap = allocateBitmap(form, source.width(), source.height());
    Image view = viewOf(bitmap, form);
    pipeline.execute(view);
    return bitmap;
}

void fillWhite(Image& image, std::size_t x, std::size_t y) {
    auto* pixel = static_cast<unsigned char*>(image.getPixelPtr(x, y));
    if (image.hasFloatFormat()) {
        std::fill_n(reinterpret_cast<float*>(pixel), image.getBytePixelStride() / sizeof(float), 1.0F);
    } else {
        std::fill_n(pixel, image.getBytePixelStride(), std::numeric_limits<unsigned char>::max());
    }
}

/// Puts the untouched source over the left half of the result and a white line of two pixels between them.
void splitWith(const Bitmap& after, Form form, Pipeline pipeline, const Picture& source) {
    pipeline.setActiveStages(0);
    const Bitmap before = render(pipeline, source, form);
    const Image left = viewOf(before, form);
    Image image = viewOf(after, form);
    const std::size_t middle = image.getWidth() / 2;
    for (std::size_t y = 0; y < image.getHeight(); ++y) {
        const auto* from = static_cast<const unsigned char*>(left.getRowPtr(y));
        std::copy_n(from, middle * left.getBytePixelStride(), static_cast<unsigned char*>(image.getRowPtr(y)));
        for (std::size_t x = middle > 0 ? middle - 1 : 0; x < std::min(middle + 1, image.getWidth()); ++x) {
            fillWhite(image, x, y);
        }
    }
}

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

    void write(Bitmap bitmap, Form form, const Picture& source, const EncodeOptions& encoding) {
        file = std::make_unique<OutputFile>(name);
        encodePicture(*file, name, format, std::move(bitmap), form, source, encoding);
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
    target.write(std::move(bitmap), form, source, options.encoding);
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
    pipeline.setActiveStages(neededStages(pipeline));
    pipeline.setInputImage(std::make_shared<Image>(viewOf(source.bitmap, source.form)));
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

The colour profile, Exif, XMP, IPTC and comments travel into OUTPUT as far as its format can hold them; what it cannot
is told, and --strip leaves them out. Thumbnails stay behind, since they show the picture as it was.

Examples:
  zqx-img apply in.jpg -o out.jpg --set exposure=0.5 --set shadow=0.3 --quality 95
  zqx-img apply in.png -o out.png --params look.json --set saturation=0
  zqx-img apply in.png -o out.png --set gradient.intensity=1 --set gradient.white=1,0.8,0.6
  zqx-img apply in.exr -o out.png --set exposure=-1 --before-after compare.png
  zqx-img apply in.jpg -o public.jpg --strip exif,xmp,iptc

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
    options->encoding.addTo(command);
    command
        .add_option("--before-after", options->comparison, "Also write a picture: left half before, right half after")
        ->type_name("FILE");
    command.footer(describeParameters() + FOOTER);
    command.callback([options] { runApply(*options); });
}

} // namespace zqx::img::app
