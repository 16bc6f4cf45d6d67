// OpenEXR defines colour as multiplied by alpha, "associated" or "premultiplied". A pixel whose alpha is 0 may hold
// colour all the same: light without a surface, as of a flame. There is nothing to divide it by; it keeps its numbers.
#include "zqx/pictures/codecs/Alpha.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

#include "kernels/Rows.h"

namespace zqx::pictures {

namespace {

template <typename Change>
void forEachPixel(FIBITMAP* bitmap, const Change& change) {
    img::kernels::forEachRow(FreeImage_GetHeight(bitmap), [=](std::size_t y) {
        BYTE* row = FreeImage_GetScanLine(bitmap, static_cast<int>(y));
        for (FIRGBAF& pixel : std::span(reinterpret_cast<FIRGBAF*>(row), FreeImage_GetWidth(bitmap))) {
            change(pixel);
        }
    });
}

void divide(FIBITMAP* bitmap) {
    forEachPixel(bitmap, [](FIRGBAF& pixel) {
        if (pixel.alpha > 0.0F) {
            pixel.red /= pixel.alpha;
            pixel.green /= pixel.alpha;
            pixel.blue /= pixel.alpha;
        }
    });
}

void multiply(FIBITMAP* bitmap, bool keepLight) {
    forEachPixel(bitmap, [keepLight](FIRGBAF& pixel) {
        if (pixel.alpha > 0.0F) {
            pixel.red *= pixel.alpha;
            pixel.green *= pixel.alpha;
            pixel.blue *= pixel.alpha;
        } else if (!keepLight) {
            pixel.red = pixel.green = pixel.blue = 0.0F; // hidden colour, which would begin to shine
        }
    });
}

template <typename Code>
void divideCodes(FIBITMAP* bitmap) {
    constexpr std::size_t CHANNELS = 4;
    static constexpr std::uint32_t WHITE = std::numeric_limits<Code>::max();
    img::kernels::forEachRow(FreeImage_GetHeight(bitmap), [bitmap](std::size_t y) {
        auto* pixel = reinterpret_cast<Code*>(FreeImage_GetScanLine(bitmap, static_cast<int>(y)));
        for (const Code* end = pixel + CHANNELS * FreeImage_GetWidth(bitmap); pixel != end; pixel += CHANNELS) {
            const std::uint32_t alpha = pixel[CHANNELS - 1];
            for (std::size_t i = 0; alpha > 0 && i < CHANNELS - 1; ++i) {
                pixel[i] = static_cast<Code>(std::min(WHITE, (pixel[i] * WHITE + alpha / 2) / alpha));
            }
        }
    });
}

bool holdsProducts(FREE_IMAGE_FORMAT format) {
    return format == FIF_EXR;
}

} // namespace

void divideCodesByAlpha(FIBITMAP* bitmap) {
    FreeImage_GetImageType(bitmap) == FIT_RGBA16 ? divideCodes<WORD>(bitmap) : divideCodes<BYTE>(bitmap);
}

void prepareAlpha(Picture& source, FREE_IMAGE_FORMAT format, Form form, bool recolored) {
    const bool straight = hasAlpha(form) && (recolored || !holdsProducts(format));
    if (source.alpha == AlphaKind::PRODUCTS && straight) {
        divide(source.bitmap.get());
        source.alpha = AlphaKind::DIVIDED;
    } else if (source.alpha == AlphaKind::DIVIDED && !straight) {
        multiply(source.bitmap.get(), true);
        source.alpha = AlphaKind::PRODUCTS;
    }
}

void finishAlpha(FIBITMAP* bitmap, FREE_IMAGE_FORMAT format, Form form, const Picture& original) {
    if (holdsProducts(format) && form == Form::RGBA_FLOAT && original.alpha != AlphaKind::PRODUCTS &&
        hasAlpha(original.form)) {
        multiply(bitmap, original.alpha == AlphaKind::DIVIDED);
    }
}

} // namespace zqx::pictures
