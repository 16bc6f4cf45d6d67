// Calls FreeImage's decoders and checks their results.
#include "zqx/pictures/codecs/freeimage/FreeImageDecoder.h"

#include <atomic>
#include <new>
#include <utility>

#include <qutil/SehException.h>
#include <qutil/SehTranslator.h>

#include "zqx/img/system/LibraryMessages.h"
#include "zqx/pictures/bytes/Completeness.h"
#include "zqx/pictures/codecs/Limits.h"
#include "zqx/pictures/codecs/MetadataMask.h"
#include "zqx/pictures/codecs/freeimage/BitmapConversion.h"
#include "zqx/pictures/codecs/freeimage/BitmapMetadata.h"
#include "zqx/pictures/codecs/freeimage/FormatIds.h"
#include "zqx/pictures/codecs/freeimage/FreeImageMessages.h"
#include "zqx/pictures/codecs/freeimage/FreeImageStream.h"
#include "zqx/pictures/files/Error.h"

namespace zqx::pictures {

namespace {

std::atomic<bool> gFaultsAreErrors = true;

/// Whether the decoder reached the end of the file too early. Several decoders silently fill in missing data. With
/// complete files, some decoders never try to read past the end, some read ahead in blocks, and some check it
/// themselves.
bool isCutShort(const FreeImageStream& stream, FileFormat format) {
    switch (format) {
    case FileFormat::BMP:
    case FileFormat::EXR:
    case FileFormat::HDR:
    case FileFormat::PBM:
    case FileFormat::PBMRAW:
    case FileFormat::PGM:
    case FileFormat::PGMRAW:
    case FileFormat::PPM:
    case FileFormat::PPMRAW:
    case FileFormat::PSD:
    case FileFormat::RAS:
    case FileFormat::SGI: return stream.wasReadShort();
    case FileFormat::JPEG:
    case FileFormat::PCX:
    case FileFormat::TARGA: return stream.wasReadAtEnd();
    default: return false;
    }
}

int loadFlags(FileFormat format) {
    switch (format) {
    case FileFormat::JPEG: return JPEG_ACCURATE;
    case FileFormat::ICO: return ICO_MAKEALPHA;
    case FileFormat::RAW:
        return RAW_DISPLAY; // the default is linear light in 16 bits, which would be taken for encoded colour
    default: return 0;
    }
}

/// Refuses TIFF files whose samples FreeImage misinterprets, or warns about them.
void refuseMisreadTiff(const std::string& name, const TiffSamples& samples) {
    if (samples.perPixel == 2 && samples.bits == 16) {
        throw Error(
            name, "is 16-bit grey with transparency, which is not supported in TIFF files; convert it to colour first");
    }
    if (samples.perPixel == 1 && samples.bits == 16 && samples.floats) {
        throw Error(name,
                    "is grey in half floats, which is not supported in TIFF files; convert it to 32-bit floats first");
    }
    if (samples.perPixel == 2) {
        warn(name, "is grey with transparency, which is only partly supported in TIFF files; convert it to colour to "
                   "keep it all");
    }
}

/// Determines the kind of alpha, and unpremultiplies 8-bit and 16-bit codes.
AlphaKind getAlphaKind(FIBITMAP* bitmap, const Header& header) {
    switch (FreeImage_GetImageType(bitmap)) {
    case FIT_RGBAF:
        return header.info.format == FileFormat::EXR || header.tiff.premultiplied ? AlphaKind::PREMULTIPLIED
                                                                                  : AlphaKind::STRAIGHT;
    case FIT_BITMAP:
    case FIT_RGBA16:
        if (header.tiff.premultiplied && FreeImage_GetColorType(bitmap) == FIC_RGBALPHA) {
            unpremultiplyCodes(bitmap);
        }
        break;
    default: break;
    }
    return AlphaKind::STRAIGHT;
}

/// The decoded bitmap, or null if FreeImage refuses the file. @throws Error if the file crashes the decoder
Bitmap tryDecode(FreeImageStream& stream, const std::string& name, FileFormat format, int flags) {
    const img::LibraryMessages listening;
    if (!gFaultsAreErrors) {
        return Bitmap(stream.decode(getFormatId(format), flags));
    }
    try {
        const qutil::SehTranslator translator; // damaged files may cause faults in FreeImage's decoders
        return Bitmap(stream.decode(getFormatId(format), flags));
    } catch (const qutil::SehException&) {
        throw Error(name, std::string("crashed the ") + getName(format) + " decoder; the file is probably damaged");
    }
}

/// @throws Error if the disk failed, which is not the file's fault
void checkDisk(const InputFile& file) {
    if (file.readFailure()) {
        throw Error(file.name(), "cannot be read (" + file.readFailure().message() + "); check the disk it is on");
    }
}

/// FreeImage's message about channels that it leaves out says no more than the warning about what the header announces.
bool repeatsWhatIsLost(const Header& header) {
    return header.info.format == FileFormat::EXR && !header.lost.empty() &&
           freeImageMessages().find(" color model ") != std::string::npos;
}

/// Decodes a file.
/// @param bytes of the decoded pixels; 0 if they are not decoded or their number is not known
/// @throws Error with FreeImage's own message
Bitmap decode(FreeImageStream& stream, const InputFile& file, FileFormat format, int flags, std::uint64_t bytes) {
    constexpr std::uint64_t COPIES = 4; // that decoders keep at most, as 32-bit samples or as the content of the file
    Bitmap bitmap = tryDecode(stream, file.name(), format, flags);
    checkDisk(file);
    if (!bitmap) {
        checkForLackOfMemory(bytes * COPIES);
        throw Error(file.name(),
                    std::string("cannot be read as ") + getName(format) + inItsWords() + "; the file may be damaged");
    }
    return bitmap;
}

void checkComplete(InputFile& file, const Header& header) {
    switch (checkCompleteness(file, header)) {
    case Completeness::COMPLETE: break;
    case Completeness::CUT_SHORT: throw Error(file.name(), "is cut short; get a complete copy");
    case Completeness::DAMAGED: throw Error(file.name(), "is damaged: some of its pixels are missing");
    }
}

/// @throws Error if the picture is too large or of an unsupported kind
void checkBitmap(const std::string& name, const Bitmap& bitmap, const Limits& limits) {
    if (!FreeImage_HasPixels(bitmap.get())) {
        throw Error(name, "contains no pixel data");
    }
    checkPictureSize(name, FreeImage_GetWidth(bitmap.get()), FreeImage_GetHeight(bitmap.get()),
                     limits); // a header may be wrong or incomplete
    if (FreeImage_GetColorType(bitmap.get()) == FIC_CMYK) {
        throw Error(name, "is a CMYK picture, which is not supported; convert it to RGB first");
    }
}

const char* getName(FREE_IMAGE_TYPE type) {
    switch (type) {
    case FIT_BITMAP: return "8-bit or less";
    case FIT_UINT16: return "unsigned 16-bit";
    case FIT_INT16: return "signed 16-bit";
    case FIT_UINT32: return "unsigned 32-bit";
    case FIT_INT32: return "signed 32-bit";
    case FIT_FLOAT: return "32-bit float";
    case FIT_DOUBLE: return "64-bit float";
    case FIT_COMPLEX: return "complex";
    case FIT_RGB16: return "unsigned 16-bit, three channels";
    case FIT_RGBA16: return "unsigned 16-bit, four channels";
    case FIT_RGBF: return "32-bit float, three channels";
    case FIT_RGBAF: return "32-bit float, four channels";
    default: return "unknown";
    }
}

const char* getName(FREE_IMAGE_COLOR_TYPE type) {
    switch (type) {
    case FIC_MINISWHITE: return "grey, 0 is white";
    case FIC_MINISBLACK: return "grey";
    case FIC_RGB: return "RGB";
    case FIC_PALETTE: return "palette";
    case FIC_RGBALPHA: return "RGB with alpha";
    case FIC_CMYK: return "CMYK";
    }
    return "unknown";
}

} // namespace

void dieOfFaults() {
    gFaultsAreErrors = false;
}

FileFormat detectFormat(InputFile& file) {
    FileFormat format = formatOfId(FreeImageStream(file).detectFormat());
    if (format == FileFormat::UNKNOWN) {
        format = formatOfName(file.name());
    }
    if (!canRead(format)) {
        throw Error(file.name(), "is not a picture in a known format");
    }
    return format;
}

Header readHeader(InputFile& file, FileFormat format) {
    Header header = probeAs(file, format);
    if (isProbed(format) || !FreeImage_FIFSupportsNoPixels(getFormatId(format))) {
        return header;
    }
    FreeImageStream stream(file, maskMetadata(file, format));
    if (const Bitmap bitmap = tryDecode(stream, file.name(), format, FIF_LOAD_NOPIXELS)) {
        header.info.width = FreeImage_GetWidth(bitmap.get());
        header.info.height = FreeImage_GetHeight(bitmap.get());
        const unsigned bits = FreeImage_GetBPP(bitmap.get());
        header.info.channels = bits <= 32 ? (bits + 7) / 8 : bits % 3 == 0 ? 3 : 4;
        header.info.bitsPerChannel = bits <= 32 ? 8 : bits / header.info.channels;
    }
    return header; // decoding will report what is wrong
}

Picture decodeByFreeImage(InputFile& file, const Header& header, const Limits& limits) {
    const std::string& name = file.name();
    const FileFormat format = header.info.format;
    if (format == FileFormat::TIFF) {
        refuseMisreadTiff(name, header.tiff);
    }
    FreeImageStream stream(file, maskMetadata(file, format));
    Bitmap bitmap = decode(stream, file, format, loadFlags(format), header.info.decodedBytes());
    if (isCutShort(stream, format)) {
        throw Error(name, "is cut short" + inItsWords() + "; get a complete copy");
    }
    checkComplete(file, header);
    if (!freeImageMessages().empty() && !repeatsWhatIsLost(header)) {
        warn(name, freeImageMessages());
    }
    checkBitmap(name, bitmap, limits);
    Picture picture;
    picture.metadata = getMetadata(bitmap.get());
    picture.alpha = getAlphaKind(bitmap.get(), header);
    ConvertedPixels converted = toWorkingLayout(name, std::move(bitmap), getRowOrder(getFormatId(format)));
    picture.pixels = std::move(converted.pixels);
    picture.stored = converted.stored;
    return picture;
}

PixelDescription describeByFreeImage(InputFile& file, FileFormat format) {
    FreeImageStream stream(file, maskMetadata(file, format));
    const int flags = FreeImage_FIFSupportsNoPixels(getFormatId(format)) ? FIF_LOAD_NOPIXELS : 0;
    const Bitmap bitmap = decode(stream, file, format, flags, 0);
    FIBITMAP* handle = bitmap.get();
    return {FreeImage_GetWidth(handle),
            FreeImage_GetHeight(handle),
            FreeImage_GetBPP(handle),
            getName(FreeImage_GetImageType(handle)),
            getName(FreeImage_GetColorType(handle)),
            FreeImage_IsTransparent(handle) != 0,
            getMetadata(handle)};
}

std::string freeImageVersion() {
    return FreeImage_GetVersion();
}

} // namespace zqx::pictures
