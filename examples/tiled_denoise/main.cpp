// Denoises a render tile by tile: the colours, the albedo and the normals of one view, into an OpenEXR file. What the
// denoiser needs beside the four pictures follows the size of a tile, and not that of the render.
#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#if defined(__linux__)
#include <sys/resource.h>
#endif

#include <qutil/Log.h>
#include <tov/Result.h>
#include <tov/TovRef.h>
#include <zqx/img/DenoisingFilter.h>
#include <zqx/img/FreeImage.h>

#include "Comparison.h"
#include "TiledDenoiser.h"
#include "ToneCurve.h"

namespace {

using namespace tiled_denoise;
using zqx::img::DenoisingFilter;
using zqx::img::FreeImage;
using zqx::img::Image;

constexpr const char* USAGE = "usage: tiled_denoise COLOR ALBEDO NORMAL OUTPUT.exr [--tile N] [--compare]\n"
                              "  --tile N    pixels of a tile's side, a multiple of 16 from 208 on (1024)\n"
                              "  --compare   also denoise the render at once, say how far the tiles are from it, and\n"
                              "              fail when that is too far\n";

// Numbers of the image library.
constexpr int DETECT_FORMAT = -1;
constexpr int OPEN_EXR = 29;
constexpr int RGB_FLOAT = 11;
constexpr int RGBA_FLOAT = 12;

struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Options {
    std::vector<std::string> files; // colours, albedo, normals, output
    std::size_t tileSize = 1024;
    bool compare = false;
};

std::size_t toTileSize(const std::string& text) {
    std::size_t size = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, size);
    if (failure != std::errc() || stop != end || size % TiledDenoiser::ALIGNMENT != 0 ||
        size < TiledDenoiser::SMALLEST_TILE) {
        throw UsageError("--tile " + text + ": has to be a multiple of 16, and 208 or more");
    }
    return size;
}

Options parse(const std::vector<std::string>& arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--compare") {
            options.compare = true;
        } else if (arguments[i] == "--tile") {
            options.tileSize = toTileSize(++i < arguments.size() ? arguments[i] : "");
        } else if (arguments[i].starts_with("--")) {
            throw UsageError(arguments[i] + ": there is no such option");
        } else {
            options.files.push_back(arguments[i]);
        }
    }
    if (options.files.size() != 4) {
        throw UsageError("four files are needed, not " + std::to_string(options.files.size()));
    }
    return options;
}

/// What the image library said, if anything.
std::string reason() {
    const std::string words = FreeImage::getLibraryMessage();
    return words.empty() ? "" : ": " + words;
}

/// Looks into the bitmap's memory, which it keeps alive, and turns that upright: rows of bitmaps begin at the bottom,
/// and the denoiser was trained on pictures that stand on their feet.
std::shared_ptr<Image> load(const std::string& path) {
    const tov::TovRef<FreeImage> bitmap(FreeImage::create());
    if (tov::failed(bitmap->load(DETECT_FORMAT, path.c_str(), 0))) {
        throw std::runtime_error(path + ": cannot be read" + reason());
    }
    int type = 0;
    if (tov::failed(bitmap->getDataType(&type)) || (type != RGB_FLOAT && type != RGBA_FLOAT)) {
        throw std::runtime_error(path + ": is not a picture of floats");
    }
    std::shared_ptr<Image> picture = bitmap->asImage();
    picture->flipVertical();
    return picture;
}

/// A render and its guides.
struct Render {
    std::shared_ptr<Image> color;
    std::shared_ptr<Image> albedo;
    std::shared_ptr<Image> normal;
};

Render loadRender(const std::vector<std::string>& files) {
    const Render render{load(files[0]), load(files[1]), load(files[2])};
    for (const Image* guide : {render.albedo.get(), render.normal.get()}) {
        if (guide->getWidth() != render.color->getWidth() || guide->getHeight() != render.color->getHeight()) {
            throw std::runtime_error("the three pictures differ in size");
        }
    }
    return render;
}

/// The picture is the bitmap's own memory.
struct Output {
    tov::TovRef<FreeImage> bitmap;
    std::shared_ptr<Image> picture;

    explicit Output(const Image& like) : bitmap(FreeImage::create()) {
        const auto width = static_cast<int>(like.getWidth());
        if (tov::failed(bitmap->allocate(RGB_FLOAT, width, static_cast<int>(like.getHeight()), 96))) {
            throw std::runtime_error("there is not enough memory for the output");
        }
        picture = bitmap->asImage();
    }
};

/// The render's colours are encoded by the curve; what is returned is linear.
Output denoise(const Render& render, const ToneCurve& curve, std::size_t tileSize) {
    Output output(*render.color);
    TiledDenoiser denoiser(tileSize);
    denoiser.setInput(DenoisingFilter::COLOR, *render.color);
    denoiser.setInput(DenoisingFilter::ALBEDO, *render.albedo);
    denoiser.setInput(DenoisingFilter::NORMAL, *render.normal);
    denoiser.setOutput(*output.picture);
    if (!denoiser.execute()) {
        throw std::runtime_error("denoising failed. " + denoiser.getErrorMessage());
    }
    curve.decode(*output.picture);
    return output;
}

void printPeakMemory(const char* when) {
#if defined(__linux__)
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    std::printf("peak memory %s: %ld MiB\n", when, usage.ru_maxrss / 1024);
#else
    static_cast<void>(when);
#endif
}

void print(const char* where, const Difference& difference) {
    std::printf("%-13s largest difference %.2e, mean %.2e, of %zu values\n", where, difference.largest,
                difference.mean(), difference.count);
}

/// @return whether the tiles are as good as the whole
bool compareWithWhole(const Output& tiled, const Render& render, const ToneCurve& curve, std::size_t tileSize) {
    const std::size_t all = std::max(render.color->getWidth(), render.color->getHeight());
    const Output whole = denoise(render, curve, all);
    printPeakMemory("once denoised at once");
    const Comparison comparison = compare(*tiled.picture, *whole.picture, tileSize);
    print("along seams:", comparison.alongSeams);
    print("elsewhere:", comparison.elsewhere);
    return comparison.isWithin(TiledDenoiser::BOUND);
}

void save(const Output& output, const std::string& path) {
    output.picture->flipVertical();
    if (tov::failed(output.bitmap->save(OPEN_EXR, path.c_str(), 0))) {
        throw std::runtime_error(path + ": cannot be written" + reason());
    }
}

void run(const Options& options) {
    const Render render = loadRender(options.files);
    const ToneCurve curve(*render.color);
    curve.encode(*render.color);
    const Output denoised = denoise(render, curve, options.tileSize);
    printPeakMemory("in tiles");
    const bool isGood = !options.compare || compareWithWhole(denoised, render, curve, options.tileSize);
    save(denoised, options.files[3]);
    if (!isGood) {
        throw std::runtime_error("the tiles show: they are further than 1e-4 from the whole");
    }
}

} // namespace

int main(int argc, char** argv) {
    qutil::Log::setReportingLevel(0); // failures are told below
    try {
        run(parse({argv + 1, argv + argc}));
        return 0;
    } catch (const UsageError& error) {
        std::fprintf(stderr, "tiled_denoise: %s\n%s", error.what(), USAGE);
        return 2;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "tiled_denoise: %s\n", error.what());
        return 1;
    }
}
