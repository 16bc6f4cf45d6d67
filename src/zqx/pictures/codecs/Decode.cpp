// The decisions about decoded bitmaps: FreeImage knows some forty kinds, the image model works with six of them.
#include "zqx/pictures/codecs/Decode.h"

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <span>
#include <system_error>

#include <qutil/SehException.h>
#include <qutil/SehTranslator.h>

#include "zqx/pictures/bytes/TiffLayout.h"
#include "zqx/pictures/codecs/Alpha.h"
#include "zqx/pictures/codecs/Depth16.h"
#include "zqx/pictures/codecs/FreeImageMessages.h"
#include "zqx/pictures/codecs/LoadLimits.h"
#include "zqx/pictures/codecs/Metadata.h"
#include "zqx/pictures/codecs/MetadataMask.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/isolation/IsolatedDecoder.h"
#include "zqx/pictures/metadata/MetadataReader.h"

namespace zqx::pictures {

namespace {

std::atomic<bool> gFaultsAreErrors = true;

/// Several decoders fill up what is missing at the end of a file without a word. What a complete file lets its decoder
/// read differs: some never read a byte too many, some read ahead in blocks, and some check for themselves.
bool isCutShort(const InputFile& file, FREE_IMAGE_FORMAT format) {
    switch (format) {
    case FIF_BMP:
    case FIF_EXR:
    case FIF_HDR:
    case FIF_PBM:
    case FIF_PBMRAW:
    case FIF_PGM:
    case FIF_PGMRAW:
    case FIF_PPM:
    case FIF_PPMRAW:
    case FIF_PSD:
    case FIF_RAS:
    case FIF_SGI: return file.wasReadShort();
    case FIF_JPEG:
    case FIF_PCX:
    case FIF_TARGA: return file.wasReadAtEnd();
    default: return false;
    }
}

int loadFlags(FREE_IMAGE_FORMAT format) {
    switch (format) {
    case FIF_JPEG: return JPEG_ACCURATE;
    case FIF_ICO: return ICO_MAKEALPHA;
    case FIF_RAW: return RAW_DISPLAY; // the default is linear light in 16 bits, which would be taken for encoded colour
    default: return 0;
    }
}

std::span<const RGBQUAD> paletteOf(FIBITMAP* bitmap) {
    return {FreeImage_GetPalette(bitmap), FreeImage_GetColorsUsed(bitmap)};
}

bool hasGreyPalette(FIBITMAP* bitmap) {
    return std::ranges::all_of(paletteOf(bitmap), [](const RGBQUAD& entry) {
        return entry.rgbRed == entry.rgbGreen && entry.rgbGreen == entry.rgbBlue;
    });
}

/// True where the index already is the grey value.
bool isGreyRamp(FIBITMAP* bitmap) {
    const std::span<const RGBQUAD> palette = paletteOf(bitmap);
    for (std::size_t i = 0; i < palette.size(); ++i) {
        if (palette[i].rgbRed != i) {
            return false;
        }
    }
    return FreeImage_GetBPP(bitmap) == 8;
}

FIBITMAP* doublesToFloats(FIBITMAP* bitmap) {
    const unsigned width = FreeImage_GetWidth(bitmap);
    const unsigned height = FreeImage_GetHeight(bitmap);
    FIBITMAP* result = FreeImage_AllocateT(FIT_FLOAT, static_cast<int>(width), static_cast<int>(height), 32);
    for (unsigned y = 0; result != nullptr && y < height; ++y) {
        const auto* from = reinterpret_cast<const double*>(FreeImage_GetScanLine(bitmap, static_cast<int>(y)));
        auto* to = reinterpret_cast<float*>(FreeImage_GetScanLine(result, static_cast<int>(y)));
        std::transform(from, from + width, to, [](double value) { return static_cast<float>(value); });
    }
    return result;
}

struct Converted {
    FIBITMAP* bitmap; // the one given where nothing had to be converted
    Form stored;
};

Converted convertPalette(FIBITMAP* bitmap) {
    if (FreeImage_IsTransparent(bitmap)) {
        return {FreeImage_ConvertTo32Bits(bitmap), Form::RGBA8};
    }
    if (!hasGreyPalette(bitmap)) {
        return {FreeImage_ConvertTo24Bits(bitmap), Form::RGB8};
    }
    return {isGreyRamp(bitmap) ? bitmap : FreeImage_ConvertToGreyscale(bitmap), Form::GREY8};
}

Converted convertStandard(FIBITMAP* bitmap) {
    switch (FreeImage_GetBPP(bitmap)) {
    case 32: return {bitmap, Form::RGBA8};
    case 24: return {bitmap, Form::RGB8};
    case 16: return {FreeImage_ConvertTo24Bits(bitmap), Form::RGB8};
    default: return convertPalette(bitmap);
    }
}

Converted convertStretched(const std::string& name, FIBITMAP* bitmap) {
    warn(name, "holds numbers without a known range, which are stretched to 8-bit grey");
    return {FreeImage_ConvertToStandardType(bitmap, TRUE), Form::GREY8};
}

Converted convertToWorkingForm(const std::string& name, FIBITMAP* bitmap) {
    switch (FreeImage_GetImageType(bitmap)) {
    case FIT_BITMAP: return convertStandard(bitmap);
    case FIT_UINT16: return {decodeDepth16(bitmap).release(), Form::GREY16};
    case FIT_RGB16: return {decodeDepth16(bitmap).release(), Form::RGB16};
    case FIT_RGBA16: return {decodeDepth16(bitmap).release(), Form::RGBA16};
    case FIT_FLOAT: return {bitmap, Form::GREY_FLOAT};
    case FIT_DOUBLE: return {doublesToFloats(bitmap), Form::GREY_FLOAT};
    case FIT_RGBF: return {bitmap, Form::RGB_FLOAT};
    case FIT_RGBAF: return {bitmap, Form::RGBA_FLOAT};
    default: return convertStretched(name, bitmap);
    }
}

/// FreeImage takes the samples of these for something else.
void refuseMisreadTiff(const std::string& name, const TiffLayout& layout) {
    if (layout.samplesPerPixel == 2 && layout.bitsPerSample == 16) {
        throw Error(name,
                    "is 16-bit grey with transparency, which cannot be read from TIFF files, convert it to colour");
    }
    if (layout.samplesPerPixel == 1 && layout.bitsPerSample == 16 && layout.floats) {
        throw Error(name, "is grey in half floats, which cannot be read from TIFF files, convert it to 32-bit floats");
    }
    if (layout.samplesPerPixel == 2) {
        warn(name, "is grey with transparency, which cannot be read in full from TIFF files, convert it to colour");
    }
}

/// What the colours are, once those of a file that multiplies stored numbers by alpha are divided.
AlphaKind straightenAlpha(FIBITMAP* bitmap, FREE_IMAGE_FORMAT format, const TiffLayout& layout) {
    switch (FreeImage_GetImageType(bitmap)) {
    case FIT_RGBAF: return format == FIF_EXR || layout.associatedAlpha ? AlphaKind::PRODUCTS : AlphaKind::STRAIGHT;
    case FIT_BITMAP:
    case FIT_RGBA16:
        if (layout.associatedAlpha && FreeImage_GetColorType(bitmap) == FIC_RGBALPHA) {
            divideCodesByAlpha(bitmap);
        }
        break;
    default: break;
    }
    return AlphaKind::STRAIGHT;
}

} // namespace

void dieOfFaults() {
    gFaultsAreErrors = false;
}

Bitmap tryDecodeBitmap(InputFile& file, FREE_IMAGE_FORMAT format, int flags) {
    listenToFreeImage();
    maskMetadata(file, format);
    if (!gFaultsAreErrors) {
        return Bitmap(file.decode(format, flags));
    }
    try {
        const qutil::SehTranslator translator; // FreeImage's decoders trust what damaged files say of themselves
        return Bitmap(file.decode(format, flags));
    } catch (const qutil::SehException&) {
        throw Error(file.name(), std::string("brought the ") + FreeImage_GetFormatFromFIF(format) +
                                     " decoder down, the file must be damaged");
    }
}

Bitmap decodeBitmap(InputFile& file, FREE_IMAGE_FORMAT format, int flags) {
    Bitmap bitmap = tryDecodeBitmap(file, format, flags);
    if (!bitmap) {
        throw Error(file.name(), std::string("cannot be read as ") + FreeImage_GetFormatFromFIF(format) + inItsWords() +
                                     ", the file may be damaged");
    }
    return bitmap;
}

Picture loadPicture(const std::string& name, const LoadOptions& options) {
    return options.isolate.value_or(false) ? decodeIsolated(name, options) : decodePicture(name, options.limits);
}

Findings examine(InputFile& file, const LoadLimits& limits, const FindingsListener& listener) {
    const auto tell = [&](const Findings& findings) {
        if (listener) {
            listener(findings);
        }
    };
    checkFileSize(file.name(), file.size(), limits);
    Findings findings;
    findings.format = file.detectFormat();
    tell(findings);
    findings.size = sizeFromHeader(file, findings.format);
    if (findings.size) {
        checkPictureSize(file.name(), *findings.size, limits);
    }
    tell(findings);
    return findings;
}

Picture decodePicture(const std::string& name, const LoadLimits& limits, const FindingsListener& listener) {
    InputFile file = openPicture(name);
    const FREE_IMAGE_FORMAT format = examine(file, limits, listener).format;
    const TiffLayout layout = format == FIF_TIFF ? readTiffLayout(file).value_or(TiffLayout{}) : TiffLayout{};
    refuseMisreadTiff(name, layout);
    Bitmap bitmap = decodeBitmap(file, format, loadFlags(format));
    if (isCutShort(file, format)) {
        throw Error(name, "is cut short" + inItsWords() + ", get a complete copy");
    }
    if (!freeImageMessages().empty()) {
        warn(name, freeImageMessages());
    }
    if (isTurnedOver(format)) {
        FreeImage_FlipVertical(bitmap.get());
    }
    if (!FreeImage_HasPixels(bitmap.get())) {
        throw Error(name, "holds no pixels");
    }
    checkPictureSize(name, sizeOf(bitmap), limits); // a header may lie, or tell nothing
    if (FreeImage_GetColorType(bitmap.get()) == FIC_CMYK) {
        throw Error(name, "is in printing inks (CMYK), convert it to RGB first");
    }
    Picture picture;
    SourceMetadata source = readMetadata(name, format);
    picture.metadata = std::move(source.blocks);
    completeFrom(bitmap.get(), picture.metadata);
    picture.alpha = straightenAlpha(bitmap.get(), format, layout);
    const Converted converted = convertToWorkingForm(name, bitmap.get());
    if (converted.bitmap == nullptr) {
        throw Error(name, "cannot be converted" + inItsWords());
    }
    if (converted.bitmap == bitmap.get()) {
        picture.bitmap = std::move(bitmap);
    } else {
        picture.bitmap.reset(converted.bitmap);
        FreeImage_SetDotsPerMeterX(converted.bitmap, FreeImage_GetDotsPerMeterX(bitmap.get()));
        FreeImage_SetDotsPerMeterY(converted.bitmap, FreeImage_GetDotsPerMeterY(bitmap.get()));
    }
    if (format != FIF_RAW) { // whose decoder turns them itself
        turnUpright(picture.bitmap, source.orientation);
    }
    completeResolution(picture.bitmap.get(), source);
    picture.stored = converted.stored;
    picture.form = workingForm(converted.stored);
    return picture;
}

} // namespace zqx::pictures
