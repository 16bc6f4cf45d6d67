// FreeImage has some forty kinds of bitmap; they are reduced to six working layouts.
#include "zqx/pictures/codecs/freeimage/BitmapConversion.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <utility>

#include "kernels/samples/Codes16.h"
#include "kernels/samples/Doubles.h"
#include "kernels/samples/Premultiply.h"
#include "zqx/pictures/codecs/freeimage/FormatIds.h"
#include "zqx/pictures/codecs/freeimage/FreeImageMessages.h"
#include "zqx/pictures/files/Error.h"

namespace zqx::pictures {

namespace {

std::span<const RGBQUAD> readPalette(FIBITMAP* bitmap) {
    return {FreeImage_GetPalette(bitmap), FreeImage_GetColorsUsed(bitmap)};
}

bool hasGrayPalette(FIBITMAP* bitmap) {
    return std::ranges::all_of(readPalette(bitmap), [](const RGBQUAD& entry) {
        return entry.rgbRed == entry.rgbGreen && entry.rgbGreen == entry.rgbBlue;
    });
}

/// Whether each palette index equals its grey value.
bool isGrayRamp(FIBITMAP* bitmap) {
    const std::span<const RGBQUAD> palette = readPalette(bitmap);
    for (std::size_t i = 0; i < palette.size(); ++i) {
        if (palette[i].rgbRed != i) {
            return false;
        }
    }
    return FreeImage_GetBPP(bitmap) == 8;
}

/// The samples of a bitmap, seen from the top.
template <typename Sample>
img::kernels::SampleView<Sample> getSamples(FIBITMAP* bitmap, std::size_t channels, RowOrder order) {
    return {reinterpret_cast<Sample*>(FreeImage_GetBits(bitmap)),
            FreeImage_GetWidth(bitmap),
            FreeImage_GetHeight(bitmap),
            channels,
            FreeImage_GetPitch(bitmap),
            order == RowOrder::BOTTOM_FIRST};
}

PixelBuffer doublesToFloats(FIBITMAP* bitmap, RowOrder order) {
    PixelBuffer pixels(FreeImage_GetWidth(bitmap), FreeImage_GetHeight(bitmap), SampleLayout::GRAY32F);
    img::kernels::narrowDoubles(getSamples<const double>(bitmap, 1, order), pixels.image());
    return pixels;
}

/// 16-bit samples as linear floats.
ConvertedPixels decodeDepth16(FIBITMAP* bitmap, SampleLayout layout, RowOrder order) {
    PixelBuffer pixels(FreeImage_GetWidth(bitmap), FreeImage_GetHeight(bitmap), layout);
    img::kernels::decodeCodes16(getSamples<const std::uint16_t>(bitmap, channelCount(layout), order), pixels.image());
    return {std::move(pixels), layout};
}

Bitmap encodeDepth16(const PixelBuffer& pixels, SampleLayout layout, RowOrder order) {
    Bitmap bitmap = allocateBitmap(getStoredType(layout), pixels.width(), pixels.height());
    img::kernels::encodeCodes16(pixels.image(), getSamples<std::uint16_t>(bitmap.get(), channelCount(layout), order));
    return bitmap;
}

struct Converted {
    FIBITMAP* bitmap; // the original one if no conversion was necessary
    SampleLayout stored;
};

Converted convertPalette(FIBITMAP* bitmap) {
    if (FreeImage_IsTransparent(bitmap)) {
        return {FreeImage_ConvertTo32Bits(bitmap), SampleLayout::RGBA8};
    }
    if (!hasGrayPalette(bitmap)) {
        return {FreeImage_ConvertTo24Bits(bitmap), SampleLayout::RGB8};
    }
    return {isGrayRamp(bitmap) ? bitmap : FreeImage_ConvertToGreyscale(bitmap), SampleLayout::GRAY8};
}

Converted convertStandard(FIBITMAP* bitmap) {
    switch (FreeImage_GetBPP(bitmap)) {
    case 32: return {bitmap, SampleLayout::RGBA8};
    case 24: return {bitmap, SampleLayout::RGB8};
    case 16: return {FreeImage_ConvertTo24Bits(bitmap), SampleLayout::RGB8};
    default: return convertPalette(bitmap);
    }
}

Converted convertStretched(const std::string& name, FIBITMAP* bitmap) {
    warn(name, "has samples without a known range; they are scaled to 8-bit grey");
    return {FreeImage_ConvertToStandardType(bitmap, TRUE), SampleLayout::GRAY8};
}

Converted convert(const std::string& name, FIBITMAP* bitmap) {
    switch (FreeImage_GetImageType(bitmap)) {
    case FIT_BITMAP: return convertStandard(bitmap);
    case FIT_FLOAT: return {bitmap, SampleLayout::GRAY32F};
    case FIT_RGBF: return {bitmap, SampleLayout::RGB32F};
    case FIT_RGBAF: return {bitmap, SampleLayout::RGBA32F};
    default: return convertStretched(name, bitmap);
    }
}

} // namespace

ConvertedPixels toWorkingLayout(const std::string& name, Bitmap bitmap, RowOrder order) {
    switch (FreeImage_GetImageType(bitmap.get())) {
    case FIT_UINT16: return decodeDepth16(bitmap.get(), SampleLayout::GRAY16, order);
    case FIT_RGB16: return decodeDepth16(bitmap.get(), SampleLayout::RGB16, order);
    case FIT_RGBA16: return decodeDepth16(bitmap.get(), SampleLayout::RGBA16, order);
    case FIT_DOUBLE: return {doublesToFloats(bitmap.get(), order), SampleLayout::GRAY32F};
    default: break;
    }
    const Converted converted = convert(name, bitmap.get());
    if (converted.bitmap == nullptr) {
        checkForLackOfMemory(std::uint64_t{4} * FreeImage_GetWidth(bitmap.get()) * FreeImage_GetHeight(bitmap.get()));
        throw Error(name, "cannot be converted to a supported sample layout" + inItsWords());
    }
    if (converted.bitmap != bitmap.get()) {
        bitmap.reset(converted.bitmap);
    }
    return {takePixels(std::move(bitmap), order), converted.stored};
}

Bitmap toStoredLayout(const std::string& name, PixelBuffer& pixels, SampleLayout layout, RowOrder order) {
    if (bitsPerChannel(layout) == 16) {
        return encodeDepth16(pixels, layout, order);
    }
    Bitmap bitmap = wrapPixels(pixels, order);
    if (layout != SampleLayout::PALETTE8) {
        return bitmap;
    }
    Bitmap palette(FreeImage_ColorQuantizeEx(bitmap.get(), FIQ_WUQUANT, 256, 0, nullptr));
    if (!palette) {
        checkForLackOfMemory(std::uint64_t{2} * pixels.width() * pixels.height());
        throw Error(name, "the colours cannot be reduced to a palette of 256" + inItsWords());
    }
    return palette;
}

void unpremultiplyCodes(FIBITMAP* bitmap) {
    if (FreeImage_GetImageType(bitmap) == FIT_RGBA16) {
        img::kernels::unpremultiplyCodes(getSamples<std::uint16_t>(bitmap, 4, RowOrder::BOTTOM_FIRST));
    } else {
        img::kernels::unpremultiplyCodes(img::Image(FreeImage_GetBits(bitmap), FreeImage_GetWidth(bitmap),
                                                    FreeImage_GetHeight(bitmap), workingFormat(SampleLayout::RGBA8),
                                                    FreeImage_GetPitch(bitmap)));
    }
}

} // namespace zqx::pictures
