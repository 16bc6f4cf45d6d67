// The render is arithmetic and a fixed sequence of random numbers: the same on every machine.
#include "cli/commands/Render.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include <zqx/img/DenoisingFilter.h>

namespace zqx::img::test {

namespace {

constexpr unsigned WIDTH = 97; // odd, so that rows of bytes are padded
constexpr unsigned HEIGHT = 61;

using Vector = std::array<float, 3>;

struct Surface {
    Vector albedo;
    Vector normal;
};

/// Above the floor there is nothing: zeros in both guides.
Surface surfaceAt(unsigned x, unsigned y) {
    const float dx = (static_cast<float>(x) - 60.0F) / 22.0F;
    const float dy = (static_cast<float>(y) - 32.0F) / 22.0F;
    const float fromCentre = dx * dx + dy * dy;
    if (fromCentre < 1.0F) {
        return {{0.8F, 0.4F, 0.2F}, {dx, -dy, std::sqrt(1.0F - fromCentre)}};
    }
    if (y < 20) {
        return {};
    }
    const float tile = (x / 12 + y / 12) % 2 == 0 ? 0.7F : 0.2F;
    return {{tile, tile, 0.6F * tile}, {0.0F, 1.0F, 0.0F}};
}

float lightOn(const Vector& normal) {
    return 0.08F + 0.5F * std::max(0.0F, -0.5F * normal[0] + 0.7F * normal[1] + 0.5F * normal[2]);
}

/// Mean of a few samples that are mostly dark and sometimes bright, as paths that rarely find the lamp.
float noise(std::uint32_t& state) {
    constexpr int SAMPLES = 6;
    float sum = 0.0F;
    for (int i = 0; i < SAMPLES; ++i) {
        state = state * 1664525U + 1013904223U; // Numerical Recipes
        sum += (state >> 16) % 3 == 0 ? 3.0F : 0.0F;
    }
    return sum / SAMPLES;
}

Render paintRender() {
    Render render;
    for (Raster* raster : {&render.clean, &render.noisy, &render.albedo, &render.normal}) {
        raster->width = WIDTH;
        raster->height = HEIGHT;
    }
    std::uint32_t state = 1;
    for (unsigned i = 0; i < WIDTH * HEIGHT; ++i) {
        const Surface surface = surfaceAt(i % WIDTH, i / WIDTH);
        const float light = lightOn(surface.normal);
        const float scattered = light * noise(state);
        for (std::size_t c = 0; c < 3; ++c) {
            render.clean.values.push_back(surface.albedo[c] * light);
            render.noisy.values.push_back(surface.albedo[c] * scattered);
            render.albedo.values.push_back(surface.albedo[c]);
            render.normal.values.push_back(surface.normal[c]);
        }
    }
    return render;
}

} // namespace

const Render& sampleRender() {
    static const Render render = paintRender();
    return render;
}

float decoded(float encoded) {
    return std::pow(encoded, 2.2F);
}

float encoded(float linear) {
    return std::pow(linear, 1.0F / 2.2F);
}

Raster denoised(const Raster& noisy, const Raster& albedo, const Raster& normal, bool hdr) {
    std::vector<float> color;
    for (std::size_t i = 0; i < noisy.values.size(); ++i) {
        color.push_back(noisy.values[i]);
        if (i % 3 == 2) {
            color.push_back(1.0F);
        }
    }
    Raster guides[] = {albedo, normal};
    std::string error;
    if (!denoiseImage(color.data(), guides[0].values.data(), guides[1].values.data(), noisy.width, noisy.height, hdr,
                      error)) {
        throw std::runtime_error(error);
    }
    Raster result = noisy;
    for (std::size_t i = 0; i < result.values.size(); ++i) {
        result.values[i] = color[i / 3 * 4 + i % 3];
    }
    return result;
}

Bitmap floatBitmap(const Raster& raster) {
    Bitmap bitmap(FreeImage_AllocateT(FIT_RGBF, static_cast<int>(raster.width), static_cast<int>(raster.height)));
    for (unsigned y = 0; y < raster.height; ++y) {
        const auto from = raster.values.begin() + static_cast<std::ptrdiff_t>(y * raster.width * 3);
        BYTE* row = FreeImage_GetScanLine(bitmap.get(), static_cast<int>(raster.height - 1 - y));
        std::copy_n(from, raster.width * 3, reinterpret_cast<float*>(row));
    }
    return bitmap;
}

Bitmap byteBitmap(const Raster& raster) {
    return paint(raster.width, raster.height, 24, [&](unsigned x, unsigned y) {
        const float* pixel = &raster.values[(y * raster.width + x) * 3];
        const auto byte = [&](int c) {
            return static_cast<int>(std::lround(255.0F * std::clamp(pixel[c], 0.0F, 1.0F)));
        };
        return Rgba{byte(0), byte(1), byte(2)};
    });
}

Raster getRaster(const Bitmap& bitmap) {
    Raster raster{FreeImage_GetWidth(bitmap.get()), FreeImage_GetHeight(bitmap.get()), {}};
    const bool isFloat = FreeImage_GetImageType(bitmap.get()) != FIT_BITMAP;
    for (unsigned y = 0; y < raster.height; ++y) {
        for (unsigned x = 0; x < raster.width; ++x) {
            if (isFloat) {
                const float* pixel = floatsAt(bitmap, x, y);
                raster.values.insert(raster.values.end(), pixel, pixel + 3);
                continue;
            }
            const Rgba pixel = pixelAt(bitmap, x, y);
            for (const int value : {pixel.r, pixel.g, pixel.b}) {
                raster.values.push_back(static_cast<float>(value) / 255.0F);
            }
        }
    }
    return raster;
}

double distance(const Raster& a, const Raster& b) {
    if (a.width != b.width || a.height != b.height) {
        return std::numeric_limits<double>::infinity();
    }
    double sum = 0.0;
    for (std::size_t i = 0; i < a.values.size(); ++i) {
        const double difference = static_cast<double>(a.values[i]) - static_cast<double>(b.values[i]);
        sum += difference * difference;
    }
    return std::sqrt(sum / static_cast<double>(a.values.size()));
}

} // namespace zqx::img::test
