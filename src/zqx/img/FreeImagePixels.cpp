// Pixel access of the bitmap component: floats in and out of four layouts, sampling, palettes.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>

#include <qutil/Hash.h>

#include "FreeImageSupport.h"

namespace zqx::img {

namespace {

/// The layouts that are read and written as floats.
enum class Layout { NONE, BGR_BYTES, BGRA_BYTES, RGB_FLOATS, RGBA_FLOATS };

Layout getLayout(FIBITMAP* bitmap) {
    const unsigned bitsPerPixel = FreeImage_GetBPP(bitmap);
    switch (FreeImage_GetImageType(bitmap)) {
    case FIT_BITMAP:
        return bitsPerPixel == 24 ? Layout::BGR_BYTES : bitsPerPixel == 32 ? Layout::BGRA_BYTES : Layout::NONE;
    case FIT_RGBF: return Layout::RGB_FLOATS;
    case FIT_RGBAF: return Layout::RGBA_FLOATS;
    default: return Layout::NONE;
    }
}

qutil::EColor4f readPixel(const BYTE* pixel, Layout layout) {
    const auto byteAt = [pixel](std::size_t i) { return static_cast<float>(pixel[i]) / 255.0F; };
    qutil::EColor4f color{0.0F, 0.0F, 0.0F, 1.0F};
    switch (layout) {
    case Layout::BGR_BYTES: return {byteAt(FI_RGBA_RED), byteAt(FI_RGBA_GREEN), byteAt(FI_RGBA_BLUE), 1.0F};
    case Layout::BGRA_BYTES:
        return {byteAt(FI_RGBA_RED), byteAt(FI_RGBA_GREEN), byteAt(FI_RGBA_BLUE), byteAt(FI_RGBA_ALPHA)};
    case Layout::RGB_FLOATS: std::memcpy(&color, pixel, 3 * sizeof(float)); break;
    case Layout::RGBA_FLOATS: std::memcpy(&color, pixel, 4 * sizeof(float)); break;
    case Layout::NONE: break;
    }
    return color;
}

void writePixel(BYTE* pixel, Layout layout, const qutil::EColor4f& color) {
    switch (layout) {
    case Layout::BGRA_BYTES: pixel[FI_RGBA_ALPHA] = toByte(color.a); [[fallthrough]];
    case Layout::BGR_BYTES:
        pixel[FI_RGBA_RED] = toByte(color.r);
        pixel[FI_RGBA_GREEN] = toByte(color.g);
        pixel[FI_RGBA_BLUE] = toByte(color.b);
        break;
    case Layout::RGB_FLOATS: std::memcpy(pixel, &color, 3 * sizeof(float)); break;
    case Layout::RGBA_FLOATS: std::memcpy(pixel, &color, 4 * sizeof(float)); break;
    case Layout::NONE: break;
    }
}

/// Address of a pixel counted from the top; null for a bitmap that was loaded without pixels.
BYTE* pixelAddress(FIBITMAP* bitmap, int x, int y) {
    const int line = static_cast<int>(FreeImage_GetHeight(bitmap)) - 1 - y;
    BYTE* const first = FreeImage_GetScanLine(bitmap, line);
    return first == nullptr ? nullptr : first + static_cast<std::ptrdiff_t>(x) * (FreeImage_GetBPP(bitmap) / 8);
}

/// Bilinear neighbours beyond the last row or column come from the first; an empty or unreadable bitmap is all zeros.
class WrappingSampler {
public:
    explicit WrappingSampler(FIBITMAP* bitmap)
        : mBitmap(bitmap), mLayout(getLayout(bitmap)), mWidth(static_cast<int>(FreeImage_GetWidth(bitmap))),
          mHeight(static_cast<int>(FreeImage_GetHeight(bitmap))) {}

    qutil::EColor4f nearest(float u, float v) const { return fetch(nearestIndex(u, mWidth), nearestIndex(v, mHeight)); }

    qutil::EColor4f bilinear(float u, float v) const {
        const Position x = getPosition(u, mWidth);
        const Position y = getPosition(v, mHeight);
        const qutil::EColor4f upper = blend(fetch(x.index, y.index), fetch(x.index + 1, y.index), x.fraction);
        const qutil::EColor4f lower = blend(fetch(x.index, y.index + 1), fetch(x.index + 1, y.index + 1), x.fraction);
        return blend(upper, lower, y.fraction);
    }

private:
    struct Position {
        int index;
        float fraction;
    };

    static int nearestIndex(float t, int count) {
        const float position = static_cast<float>(count) * t;
        if (!(position > 0.0F)) { // also NaN
            return 0;
        }
        return position < static_cast<float>(count) ? std::min(static_cast<int>(position), count - 1) : count - 1;
    }

    static Position getPosition(float t, int count) {
        const auto size = static_cast<float>(count);
        const float centred = t - 0.5F / size;
        const float limited = centred > 0.0F ? std::min(centred, 1.0F) : 0.0F; // also NaN
        const float position = size * limited;
        const float index = std::floor(position);
        return {static_cast<int>(index), position - index};
    }

    qutil::EColor4f fetch(int x, int y) const {
        const BYTE* pixel = mWidth == 0 || mHeight == 0 || mLayout == Layout::NONE
                                ? nullptr
                                : pixelAddress(mBitmap, x % mWidth, y % mHeight);
        return pixel == nullptr ? qutil::EColor4f{0.0F, 0.0F, 0.0F, 0.0F} : readPixel(pixel, mLayout);
    }

    static qutil::EColor4f blend(const qutil::EColor4f& from, const qutil::EColor4f& to, float t) {
        const auto mix = [t](float a, float b) { return a * (1.0F - t) + b * t; };
        return {mix(from.r, to.r), mix(from.g, to.g), mix(from.b, to.b), mix(from.a, to.a)};
    }

    FIBITMAP* mBitmap;
    Layout mLayout;
    int mWidth;
    int mHeight;
};

void store(const qutil::EColor4f& color, float* r, float* g, float* b, float* a) {
    *r = color.r;
    *g = color.g;
    *b = color.b;
    *a = color.a;
}

} // namespace

// Access to single pixels is made in loops over whole pictures: it has neither guard nor log.

tov::Result FreeImage::getPixelF(int x, int y, float* r, float* g, float* b, float* a) {
    if (mBitmap == nullptr) {
        return tov::NOT_READY;
    }
    const Layout layout = getLayout(mBitmap);
    if (layout == Layout::NONE) {
        return tov::NOT_SUPPORTED;
    }
    const BYTE* pixel = pixelAddress(mBitmap, x, y);
    if (pixel == nullptr) {
        return tov::FAILURE;
    }
    store(readPixel(pixel, layout), r, g, b, a);
    return tov::SUCCESS;
}

tov::Result FreeImage::setPixelF(int x, int y, float r, float g, float b, float a) {
    if (mBitmap == nullptr) {
        return tov::NOT_READY;
    }
    const Layout layout = getLayout(mBitmap);
    if (layout == Layout::NONE) {
        return tov::NOT_SUPPORTED;
    }
    BYTE* pixel = pixelAddress(mBitmap, x, y);
    if (pixel == nullptr) {
        return tov::FAILURE;
    }
    writePixel(pixel, layout, {r, g, b, a});
    return tov::SUCCESS;
}

tov::Result FreeImage::sampleF(float u, float v, int mode, float* r, float* g, float* b, float* a) {
    constexpr int NEAREST = 0;
    const WrappingSampler sampler(mBitmap);
    store(mode == NEAREST ? sampler.nearest(u, v) : sampler.bilinear(u, v), r, g, b, a);
    return tov::SUCCESS;
}

tov::Result FreeImage::getPixelColor(int x, int y, qutil::EColor4f* pColor) {
    if (mBitmap == nullptr) {
        return tov::NOT_READY;
    }
    RGBQUAD color = {};
    const bool found =
        FreeImage_GetPixelColor(mBitmap, static_cast<unsigned>(x),
                                FreeImage_GetHeight(mBitmap) - 1U - static_cast<unsigned>(y), &color) != 0;
    *pColor = {static_cast<float>(color.rgbRed), static_cast<float>(color.rgbGreen), static_cast<float>(color.rgbBlue),
               static_cast<float>(color.rgbReserved)};
    return successIf(found);
}

tov::Result FreeImage::getScanline(int line, void** pLine) {
    const detail::MethodSite site = ZQX_FREEIMAGE_SITE;
    if (mBitmap == nullptr) {
        return detail::reported(site, tov::NOT_READY);
    }
    if (pLine == nullptr) {
        return detail::nullArgument(site, "pLine");
    }
    *pLine = FreeImage_GetScanLine(mBitmap, line);
    return detail::reported(site, successIf(*pLine != nullptr));
}

tov::Result FreeImage::setScanlineF(int line, const tov::Sequence<float>& values) {
    const detail::MethodSite site = ZQX_FREEIMAGE_SITE;
    if (mBitmap == nullptr) {
        return detail::reported(site, tov::NOT_READY);
    }
    return detail::guarded(site, [&]() -> tov::Result {
        const Layout layout = getLayout(mBitmap);
        if (layout == Layout::NONE) {
            return tov::NOT_SUPPORTED;
        }
        BYTE* pixel = FreeImage_GetScanLine(mBitmap, line);
        if (pixel == nullptr) {
            return tov::FAILURE;
        }
        if (layout == Layout::RGBA_FLOATS) {
            copyBytes(pixel, values.data, std::size_t{values.count} * sizeof(float));
            return tov::SUCCESS;
        }
        const float* value = values.data;
        const std::size_t width = getWidth();
        const std::size_t stride = getBitsPerPixel() / 8;
        for (std::size_t x = 0; x < width; ++x, value += 4, pixel += stride) {
            writePixel(pixel, layout, {value[0], value[1], value[2], value[3]});
        }
        return tov::SUCCESS;
    });
}

tov::Result FreeImage::getPalette(tov::Sequence<qutil::EColor3f>* pPalette) {
    constexpr tov::Result NO_PALETTE = 1;
    constexpr std::uint32_t ENTRIES = 256;
    const detail::MethodSite site = ZQX_FREEIMAGE_SITE;
    if (pPalette == nullptr) {
        return detail::nullArgument(site, "pPalette");
    }
    return detail::guarded(site, [&]() -> tov::Result {
        if (mBitmap == nullptr) {
            return tov::NOT_READY;
        }
        const RGBQUAD* palette = FreeImage_GetPalette(mBitmap);
        if (palette == nullptr) {
            return NO_PALETTE;
        }
        auto* entries = static_cast<qutil::EColor3f*>(tov::tovCalloc(ENTRIES, sizeof(qutil::EColor3f)));
        if (entries == nullptr) {
            throw std::bad_alloc();
        }
        // Shallow bitmaps have fewer colours than the answer: behind theirs it stays black.
        std::transform(palette, palette + std::min(ENTRIES, FreeImage_GetColorsUsed(mBitmap)), entries,
                       [](const RGBQUAD& color) -> qutil::EColor3f {
                           return {static_cast<float>(color.rgbRed) / 255.0F,
                                   static_cast<float>(color.rgbGreen) / 255.0F,
                                   static_cast<float>(color.rgbBlue) / 255.0F};
                       });
        *pPalette = {ENTRIES, entries};
        return tov::SUCCESS;
    });
}

tov::Result FreeImage::getColorType(qfreeimage::ColorType* pType) {
    const detail::MethodSite site = ZQX_FREEIMAGE_SITE;
    if (pType == nullptr) {
        return detail::nullArgument(site, "pType");
    }
    return detail::guarded(site, [&]() -> tov::Result {
        if (mBitmap == nullptr) {
            return tov::NOT_READY;
        }
        switch (FreeImage_GetColorType(mBitmap)) {
        case FIC_MINISWHITE: *pType = qfreeimage::MIN_IS_WHITE; break;
        case FIC_MINISBLACK: *pType = qfreeimage::MIN_IS_BLACK; break;
        case FIC_RGB: *pType = qfreeimage::RGB; break;
        case FIC_PALETTE: *pType = qfreeimage::PALETTE; break;
        case FIC_RGBALPHA: *pType = qfreeimage::RGB_ALPHA; break;
        case FIC_CMYK: *pType = qfreeimage::CMYK; break;
        default: return tov::UNEXPECTED;
        }
        return tov::SUCCESS;
    });
}

tov::Result FreeImage::getTransparentIndex(int* pIndex) {
    return detail::guarded(ZQX_FREEIMAGE_SITE, [&]() -> tov::Result {
        if (mBitmap == nullptr) {
            return tov::NOT_READY;
        }
        *pIndex = FreeImage_GetTransparentIndex(mBitmap);
        return tov::SUCCESS;
    });
}

tov::Result FreeImage::getHash(int* pHash) {
    return detail::guarded(ZQX_FREEIMAGE_SITE, [&]() -> tov::Result {
        if (mBitmap == nullptr) {
            return tov::NOT_READY;
        }
        const std::uint32_t size = FreeImage_GetPitch(mBitmap) * FreeImage_GetHeight(mBitmap);
        const BYTE* bits = FreeImage_GetBits(mBitmap);
        if (size == 0 || bits == nullptr) {
            return tov::NOT_READY;
        }
        *pHash = static_cast<int>(qutil::superFastHash(reinterpret_cast<const char*>(bits), size));
        return tov::SUCCESS;
    });
}

} // namespace zqx::img
