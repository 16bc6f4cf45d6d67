// denoise: removes noise from a render with the denoising filter, guided by the albedo and normals of the surfaces.
#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <utility>

#include <CLI/CLI.hpp>

#include <zqx/img/Color.h>
#include <zqx/img/DenoisingFilter.h>
#include <zqx/tools/MemoryGate.h>

#include "commands/Commands.h"
#include "commands/ResultFile.h"
#include "options/MemoryOption.h"
#include "options/ReadingOptions.h"
#include "options/WritingOptions.h"
#include "zqx/pictures/codecs/Alpha.h"
#include "zqx/pictures/codecs/Decode.h"
#include "zqx/pictures/codecs/Encode.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/tools/batch/OpenPicture.h"

namespace zqx::app {

using namespace pictures;
using namespace tools;

namespace {

struct DenoiseOptions {
    std::string color;
    std::string albedo;
    std::string normal;
    std::string output;
    ReadOptions loading;
    std::uint64_t memory = 0; ///< the default
    /// Not the default even for 8-bit pictures: noise averages out correctly in linear light only. In gamma-encoded
    /// values the mean is too light, and the denoiser removes less noise.
    bool displayReferred = false;
    WriteOptions encoding;
};

/// The filter checks this too, but only after the pictures have been read and its library has been loaded.
void checkGuides(const DenoiseOptions& options) {
    for (const auto& [option, file] : {std::pair("--albedo", options.albedo), std::pair("--normal", options.normal)}) {
        if (file.empty()) {
            throw Error(option, "Invalid Input: the denoiser needs both guides; give --albedo and --normal");
        }
    }
}

std::shared_ptr<img::Image> linearPixels(const Picture& picture) {
    return picture.image().convertTo(img::Image::RGBA32F);
}

void forEachPixel(img::Image& image, const std::function<img::Color(const img::Color&)>& change) {
    const std::span<img::Color> pixels(static_cast<img::Color*>(image.getDataPtr()),
                                       image.getWidth() * image.getHeight());
    for (img::Color& pixel : pixels) {
        pixel = change(pixel);
    }
}

Picture loadGuide(PictureFile& file, const Picture& color, const ReadOptions& loading) {
    Picture guide = readPicture(file, loading);
    if (guide.width() != color.width() || guide.height() != color.height()) {
        const auto size = [](const Picture& picture) {
            return std::to_string(picture.width()) + " x " + std::to_string(picture.height());
        };
        throw Error(file.name(), "is " + size(guide) + ", but the colour picture is " + size(color) +
                                     "; both must be of the same size");
    }
    return guide;
}

/// Gamma-encoded pictures store a normal n as (n + 1) / 2. Black is not a normal: renderers write it where there is no
/// surface.
img::Color expandDirection(const img::Color& decoded) {
    if (decoded.r == 0.0F && decoded.g == 0.0F && decoded.b == 0.0F) {
        return decoded;
    }
    const img::Color stored = decoded.toSrgb();
    return {2.0F * stored.r - 1.0F, 2.0F * stored.g - 1.0F, 2.0F * stored.b - 1.0F, stored.a};
}

std::shared_ptr<img::Image> loadNormal(PictureFile& file, const Picture& color, const ReadOptions& loading) {
    const Picture picture = loadGuide(file, color, loading);
    std::shared_ptr<img::Image> normal = linearPixels(picture);
    if (!isFloat(picture.stored)) {
        forEachPixel(*normal, expandDirection);
    }
    return normal;
}

/// Denoises in place. The filter accesses three floats at a stride of four, so that alpha is kept.
void denoise(img::Image& color, const img::Image& albedo, const img::Image& normal, const DenoiseOptions& options) {
    img::DenoisingFilter filter;
    filter.setInput(img::DenoisingFilter::COLOR, color);
    filter.setInput(img::DenoisingFilter::ALBEDO, albedo);
    filter.setInput(img::DenoisingFilter::NORMAL, normal);
    filter.setOutput(color);
    filter.setHDR(!options.displayReferred);
    if (!filter.execute()) {
        const std::string& words = filter.getErrorMessage();
        throw Error(options.color, words.empty() ? "the denoiser failed without giving a reason" : words);
    }
}

/// Clamps to [0, 1]; NaN becomes 0.
float limited(float value) {
    return std::fmin(std::fmax(value, 0.0F), 1.0F);
}

/// Conversion to bytes truncates. Denoised values scatter around the correct ones and would come out half a step too
/// dark.
img::Color raisedByHalfStep(const img::Color& encoded) {
    constexpr float HALF_STEP = 0.5F / 255.0F;
    return {encoded.r + HALF_STEP, encoded.g + HALF_STEP, encoded.b + HALF_STEP, encoded.a};
}

img::Color inRange(const img::Color& pixel) {
    return {limited(pixel.r), limited(pixel.g), limited(pixel.b), pixel.a};
}

/// @param encoded whether the denoiser was given gamma-encoded values
PixelBuffer makePixels(img::Image& color, bool encoded, SampleLayout from, SampleLayout to) {
    if (bitsPerChannel(to) == 8) {
        forEachPixel(color, [encoded](const img::Color& pixel) {
            return raisedByHalfStep(encoded ? inRange(pixel) : inRange(pixel).toSrgb()).toLinear();
        });
    } else if (encoded && !isFloat(to)) {
        forEachPixel(color, [](const img::Color& pixel) { return inRange(pixel).toLinear(); });
    } else if (encoded && !isFloat(from)) {
        forEachPixel(color, [](const img::Color& pixel) { return pixel.toLinear(); });
    }
    PixelBuffer pixels(color.getWidth(), color.getHeight(), to);
    pixels.image().convertFrom(color);
    return pixels;
}

/// The files of a render.
struct RenderFiles {
    explicit RenderFiles(const DenoiseOptions& options)
        : color(options.color, options.loading.limits), albedo(options.albedo, options.loading.limits),
          normal(options.normal, options.loading.limits) {}

    PictureFile color;
    PictureFile albedo;
    PictureFile normal;
};

PixelBuffer render(const Picture& source, RenderFiles& files, SampleLayout layout, const DenoiseOptions& options) {
    const std::shared_ptr<img::Image> color = linearPixels(source);
    const std::shared_ptr<img::Image> albedo = linearPixels(loadGuide(files.albedo, source, options.loading));
    const std::shared_ptr<img::Image> normal = loadNormal(files.normal, source, options.loading);
    if (options.displayReferred && !isFloat(source.stored)) {
        forEachPixel(*color, [](const img::Color& pixel) { return pixel.toSrgb(); }); // back to the stored values
    }
    denoise(*color, *albedo, *normal, options);
    return makePixels(*color, options.displayReferred, source.stored, layout);
}

void runDenoise(const DenoiseOptions& options) {
    checkGuides(options);
    const FileFormat format = outputFormat(options.output);
    checkResultFile(options.output, {options.albedo, options.normal});
    constexpr std::uint64_t WORKING_BYTES = 3 * sizeof(float[4]); // the denoiser limits its own memory
    RenderFiles files(options);
    requireMemory({{memoryInput(files.color), memoryInput(files.albedo), memoryInput(files.normal)},
                   {options.output},
                   WORKING_BYTES},
                  options.memory);
    checkReplacement(files.color, options.output);
    Picture source = readPicture(files.color, options.loading);
    const SampleLayout layout = chooseLayout(options.output, format, source.stored);
    warnOfLosses(options.output, source, layout);
    prepareAlpha(source, format, layout, false); // premultiplied colours of renders are denoised as they are
    PixelBuffer pixels = render(source, files, layout, options);
    OutputFile file(options.output);
    encodePicture(file, options.output, format, std::move(pixels), layout, source, options.encoding);
    file.commit();
}

constexpr const char* FOOTER = R"(
COLOR, ALBEDO and NORMAL are three pictures of the same view and size, as renderers write them: the noisy picture, and
for each pixel the reflectance and the normal of the surface. All three are required. The alpha of the guides is
ignored; that of COLOR is kept, and so is its depth where OUTPUT can store it. The format of OUTPUT follows from its
extension; it appears complete or not at all.

How values are read:
  COLOR   float pictures (EXR, HDR, PFM, float TIFF) as they are; 8-bit and 16-bit pictures are decoded to linear light
          and encoded again afterwards. --ldr is for float pictures with display-referred values, encoded and within
          [0, 1]. It takes 8-bit and 16-bit pictures as stored, which leaves more noise and lighter shadows than
          decoding them does.
  ALBEDO  like COLOR without --ldr: 0 reflects nothing, 1 everything
  NORMAL  float pictures as they are, -1 to 1 in any space; 8-bit and 16-bit pictures from the stored numbers, of which
          0 is -1 and the largest is 1
Black in ALBEDO and NORMAL, whatever their format, means that there is no surface.

Denoising is done by OpenImageDenoise, version 1 or 2, which has to be installed or to be placed next to the library of
this program. It uses all processors; without --ldr two runs may differ in the last bits of floats.

Examples:
  zqx-img denoise noisy.exr --albedo albedo.exr --normal normal.exr -o clean.exr
  zqx-img denoise noisy.png --albedo albedo.png --normal normal.png -o clean.png
  zqx-img denoise display.tif --albedo albedo.exr --normal normal.exr --ldr -o clean.tif

Exit codes: 0 success, 1 failure, 2 invalid command line.
)";

} // namespace

void addDenoiseCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("denoise", "Remove noise from a render");
    const auto options = std::make_shared<DenoiseOptions>();
    command.add_option("COLOR", options->color, "The noisy picture")->type_name("FILE")->required();
    command.add_option("--albedo", options->albedo, "The reflectance of the surfaces")->type_name("FILE");
    command.add_option("--normal", options->normal, "The normals of the surfaces")->type_name("FILE");
    command.add_option("-o,--output", options->output, "The picture to write")->type_name("FILE")->required();
    CLI::Option* linear = command.add_flag("--hdr")->description("COLOR is linear light (the default)");
    command.add_flag("--ldr", options->displayReferred, "COLOR is display-referred, between 0 and 1")->excludes(linear);
    addWritingOptions(command, options->encoding);
    addReadingOptions(command, options->loading);
    addMemoryOption(command, options->memory);
    command.footer(FOOTER);
    command.callback([options] { runDenoise(*options); });
}

} // namespace zqx::app
