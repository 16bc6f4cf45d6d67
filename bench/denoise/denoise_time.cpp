// Times DenoisingFilter on pictures in PFM files, as the program that comes with OpenImageDenoise does, and makes such
// pictures of any size from the sample render.
#include <algorithm>
#include <bit>
#include <charconv>
#include <chrono>
#include <cstddef>
#include <fstream>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <FreeImage.h>

#include <zqx/img/DenoisingFilter.h>

namespace {

using zqx::img::DenoisingFilter;
using zqx::img::Image;

constexpr const char* USAGE =
    "usage: zqx_denoise_time COLOR.pfm ALBEDO.pfm NORMAL.pfm OUTPUT.pfm RUNS\n"
    "         denoises linear values once to set up and RUNS times more, and prints the milliseconds of each\n"
    "       zqx_denoise_time --make-input INPUT.exr OUTPUT.pfm WIDTH HEIGHT\n"
    "         repeats a picture until the size is filled\n";

// The files are written and read as they lie in memory.
static_assert(std::endian::native == std::endian::little);

/// Packed pixels of three floats; row 0 is the top row.
struct Picture {
    std::size_t width = 0;
    std::size_t height = 0;
    std::vector<float> values;

    Picture() = default;
    Picture(std::size_t w, std::size_t h) : width(w), height(h), values(w * h * 3) {}

    float* row(std::size_t y) { return values.data() + y * width * 3; }
    Image view() { return {values.data(), width, height, Image::RGB32F, 0}; }
};

std::size_t toNumber(std::string_view text) {
    std::size_t number = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failure != std::errc() || end != text.data() + text.size() || number == 0) {
        throw std::runtime_error("not a number of 1 or more: " + std::string(text));
    }
    return number;
}

Picture readPfm(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string kind;
    std::size_t width = 0;
    std::size_t height = 0;
    double scale = 0;
    file >> kind >> width >> height >> scale;
    file.get(); // the one white space behind the header
    if (!file || kind != "PF" || scale >= 0) {
        throw std::runtime_error("not a little-endian colour PFM file: " + path);
    }
    Picture picture(width, height);
    for (std::size_t y = height; y-- > 0;) { // stored from the bottom
        file.read(reinterpret_cast<char*>(picture.row(y)), static_cast<std::streamsize>(width * 3 * sizeof(float)));
    }
    if (!file) {
        throw std::runtime_error("cut short: " + path);
    }
    return picture;
}

void writePfm(const std::string& path, Picture& picture) {
    std::ofstream file(path, std::ios::binary);
    file << "PF\n" << picture.width << ' ' << picture.height << "\n-1.0\n";
    for (std::size_t y = picture.height; y-- > 0;) {
        file.write(reinterpret_cast<const char*>(picture.row(y)),
                   static_cast<std::streamsize>(picture.width * 3 * sizeof(float)));
    }
    file.close();
    if (!file) {
        throw std::runtime_error("cannot be written: " + path);
    }
}

void makeInput(const std::string& from, const std::string& to, std::size_t width, std::size_t height) {
    const std::unique_ptr<FIBITMAP, decltype(&FreeImage_Unload)> bitmap(FreeImage_Load(FIF_EXR, from.c_str()),
                                                                        &FreeImage_Unload);
    if (!bitmap || FreeImage_GetImageType(bitmap.get()) != FIT_RGBF) {
        throw std::runtime_error("not an OpenEXR picture of red, green and blue: " + from);
    }
    const std::size_t tileWidth = FreeImage_GetWidth(bitmap.get());
    const std::size_t tileHeight = FreeImage_GetHeight(bitmap.get());
    Picture picture(width, height);
    for (std::size_t y = 0; y < height; ++y) {
        const std::size_t line = tileHeight - 1 - y % tileHeight; // FreeImage counts from the bottom
        const auto* tile = reinterpret_cast<const float*>(FreeImage_GetScanLine(bitmap.get(), static_cast<int>(line)));
        for (std::size_t x = 0; x < width; x += tileWidth) {
            std::copy_n(tile, std::min(tileWidth, width - x) * 3, picture.row(y) + x * 3);
        }
    }
    writePfm(to, picture);
}

double getMilliseconds(DenoisingFilter& filter) {
    const auto started = std::chrono::steady_clock::now();
    if (!filter.execute()) {
        throw std::runtime_error(filter.getErrorMessage());
    }
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - started).count();
}

void measure(Picture color, Picture albedo, Picture normal, const std::string& to, std::size_t runs) {
    if (albedo.values.size() != color.values.size() || normal.values.size() != color.values.size()) {
        throw std::runtime_error("the pictures differ in size");
    }
    Picture output(color.width, color.height);
    DenoisingFilter filter;
    filter.setInput(DenoisingFilter::COLOR, color.view());
    filter.setInput(DenoisingFilter::ALBEDO, albedo.view());
    filter.setInput(DenoisingFilter::NORMAL, normal.view());
    filter.setOutput(output.view());
    filter.setHDR(true);

    for (std::size_t run = 0; run <= runs; ++run) {
        std::cout << "run " << getMilliseconds(filter) << '\n';
    }
    writePfm(to, output);
}

void perform(const std::vector<std::string>& arguments) {
    if (arguments.size() != 5) {
        throw std::runtime_error(USAGE);
    }
    if (arguments[0] == "--make-input") {
        makeInput(arguments[1], arguments[2], toNumber(arguments[3]), toNumber(arguments[4]));
    } else {
        measure(readPfm(arguments[0]), readPfm(arguments[1]), readPfm(arguments[2]), arguments[3],
                toNumber(arguments[4]));
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        perform({argv + 1, argv + argc});
        return 0;
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
}
