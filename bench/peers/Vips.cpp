// See Vips.h.
#include "peers/Vips.h"

#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>

#include <vips/vips.h>

namespace bench::vips {

namespace {

struct Unref {
    void operator()(VipsImage* image) const { g_object_unref(image); }
};
using Picture = std::unique_ptr<VipsImage, Unref>;

Picture checked(VipsImage* image, int status) {
    if (status != 0 || image == nullptr) {
        throw std::runtime_error(std::string("libvips: ") + vips_error_buffer());
    }
    return Picture(image);
}

Picture pictureOver(const void* pixels, std::size_t width, std::size_t height) {
    const auto columns = static_cast<int>(width);
    const auto rows = static_cast<int>(height);
    Picture bands =
        checked(vips_image_new_from_memory(pixels, width * height * 3, columns, rows, 3, VIPS_FORMAT_UCHAR), 0);
    VipsImage* encoded = nullptr;
    const int status = vips_copy(bands.get(), &encoded, "interpretation", VIPS_INTERPRETATION_sRGB, nullptr);
    return checked(encoded, status);
}

/// Puts computed pixels where they belong. Runs on a thread of its own beside the ones that compute.
int storeRows(VipsRegion* region, VipsRect* area, void* target) {
    const std::size_t rowBytes = static_cast<std::size_t>(area->width) * 3;
    for (int y = area->top; y < area->top + area->height; ++y) {
        std::memcpy(static_cast<unsigned char*>(target) + static_cast<std::size_t>(y) * rowBytes,
                    VIPS_REGION_ADDR(region, 0, y), rowBytes);
    }
    return 0;
}

/// Nothing is computed before this.
void computeInto(void* target, const Picture& picture) {
    if (vips_sink_disc(picture.get(), storeRows, target) != 0) {
        throw std::runtime_error(std::string("libvips: ") + vips_error_buffer());
    }
}

} // namespace

void start(const char* program, int threads) {
    if (VIPS_INIT(program) != 0) {
        throw std::runtime_error("libvips does not start");
    }
    vips_concurrency_set(threads);
    vips_cache_set_max(0);
}

void gaussianBlur(const void* source, void* target, std::size_t width, std::size_t height, double sigma,
                  double smallestTap) {
    const Picture picture = pictureOver(source, width, height);
    VipsImage* blurred = nullptr;
    int status = vips_gaussblur(picture.get(), &blurred, sigma, "min_ampl", smallestTap, "precision",
                                VIPS_PRECISION_FLOAT, nullptr);
    const Picture floats = checked(blurred, status);
    VipsImage* bytes = nullptr;
    status = vips_cast_uchar(floats.get(), &bytes, nullptr);
    computeInto(target, checked(bytes, status));
}

void sharpen(const void* source, void* target, std::size_t width, std::size_t height, double sigma) {
    const Picture picture = pictureOver(source, width, height);
    VipsImage* sharpened = nullptr;
    const int status = vips_sharpen(picture.get(), &sharpened, "sigma", sigma, nullptr);
    computeInto(target, checked(sharpened, status));
}

} // namespace bench::vips
