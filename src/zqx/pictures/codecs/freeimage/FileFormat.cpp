// FreeImage's knowledge of file formats, with corrections where it is wrong.
#include "zqx/pictures/FileFormat.h"

#include <mutex>
#include <string_view>

#include "zqx/pictures/codecs/freeimage/FormatIds.h"
#include "zqx/pictures/files/Error.h"

namespace zqx::pictures {

namespace {

/// In the order of FileFormat.
constexpr FREE_IMAGE_FORMAT IDS[FILE_FORMAT_COUNT] = {
    FIF_BMP, FIF_CUT,   FIF_DDS,    FIF_EXR,  FIF_FAXG3, FIF_GIF, FIF_HDR,    FIF_ICO,    FIF_IFF, FIF_J2K,
    FIF_JNG, FIF_JP2,   FIF_JPEG,   FIF_JXR,  FIF_KOALA, FIF_MNG, FIF_PBM,    FIF_PBMRAW, FIF_PCD, FIF_PCX,
    FIF_PFM, FIF_PGM,   FIF_PGMRAW, FIF_PICT, FIF_PNG,   FIF_PPM, FIF_PPMRAW, FIF_PSD,    FIF_RAS, FIF_RAW,
    FIF_SGI, FIF_TARGA, FIF_TIFF,   FIF_WBMP, FIF_WEBP,  FIF_XBM, FIF_XPM};

int countBitsPerPixel(SampleLayout layout) {
    return static_cast<int>(channelCount(layout)) * bitsPerChannel(layout);
}

} // namespace

FREE_IMAGE_FORMAT getFormatId(FileFormat format) {
    return format == FileFormat::UNKNOWN ? FIF_UNKNOWN : IDS[static_cast<std::size_t>(format)];
}

FileFormat formatOfId(FREE_IMAGE_FORMAT id) {
    for (std::size_t i = 0; i < FILE_FORMAT_COUNT; ++i) {
        if (IDS[i] == id) {
            return static_cast<FileFormat>(i);
        }
    }
    return FileFormat::UNKNOWN;
}

FREE_IMAGE_TYPE getStoredType(SampleLayout layout) {
    switch (layout) {
    case SampleLayout::GRAY32F: return FIT_FLOAT;
    case SampleLayout::RGB32F: return FIT_RGBF;
    case SampleLayout::RGBA32F: return FIT_RGBAF;
    case SampleLayout::GRAY16: return FIT_UINT16;
    case SampleLayout::RGB16: return FIT_RGB16;
    case SampleLayout::RGBA16: return FIT_RGBA16;
    default: return FIT_BITMAP;
    }
}

const char* getName(FileFormat format) {
    const char* name = FreeImage_GetFormatFromFIF(getFormatId(format));
    return name != nullptr ? name : "unknown";
}

const char* getDescription(FileFormat format) {
    const char* description = FreeImage_GetFIFDescription(getFormatId(format));
    return description != nullptr ? description : "unknown";
}

std::vector<std::string> getExtensions(FileFormat format) {
    std::vector<std::string> extensions;
    const char* list = FreeImage_GetFIFExtensionList(getFormatId(format));
    for (std::string_view rest(list != nullptr ? list : ""); !rest.empty();) {
        const std::size_t comma = rest.find(',');
        extensions.emplace_back(rest.substr(0, comma));
        rest.remove_prefix(comma == std::string_view::npos ? rest.size() : comma + 1);
    }
    return extensions;
}

bool canRead(FileFormat format) {
    return format != FileFormat::UNKNOWN && FreeImage_FIFSupportsReading(getFormatId(format)) != 0;
}

bool canWrite(FileFormat format) {
    // FreeImage has an encoder for JPEG XR, but it always fails when writing to a stream.
    return format != FileFormat::UNKNOWN && format != FileFormat::JXR &&
           FreeImage_FIFSupportsWriting(getFormatId(format)) != 0;
}

/// FreeImage reports what its encoders accept, which is not always what they write.
bool holds(FileFormat format, SampleLayout layout) {
    switch (format) {
    case FileFormat::UNKNOWN: return false;
    case FileFormat::PSD:
        if (!hasColor(layout) && layout != SampleLayout::GRAY16) {
            return false; // other grey files get a broken header, which not even FreeImage can read
        }
        break;
    case FileFormat::JPEG:
        if (layout == SampleLayout::RGBA8) {
            return false; // four channels of a JPEG are printing inks
        }
        break;
    case FileFormat::PBM:
    case FileFormat::PBMRAW: return false; // black and white only; anything else would be written in another format
    case FileFormat::PGM:
    case FileFormat::PGMRAW: return layout == SampleLayout::GRAY8 || layout == SampleLayout::GRAY16;
    case FileFormat::PPM:
    case FileFormat::PPMRAW: return layout == SampleLayout::RGB8 || layout == SampleLayout::RGB16;
    default: break;
    }
    if (layout == SampleLayout::PALETTE8) {
        return FreeImage_FIFSupportsExportBPP(getFormatId(format), 8) != 0;
    }
    const FREE_IMAGE_TYPE type = getStoredType(layout);
    return type == FIT_BITMAP ? FreeImage_FIFSupportsExportBPP(getFormatId(format), countBitsPerPixel(layout)) != 0
                              : FreeImage_FIFSupportsExportType(getFormatId(format), type) != 0;
}

bool holdsColorProfile(FileFormat format) {
    return format != FileFormat::UNKNOWN && FreeImage_FIFSupportsICCProfiles(getFormatId(format)) != 0;
}

FileFormat formatOfName(const std::string& name) {
    static std::mutex mutex; // FreeImage uses strtok, whose state all threads share
    const std::lock_guard lock(mutex);
    return formatOfId(FreeImage_GetFIFFromFilename(name.c_str()));
}

FileFormat outputFormat(const std::string& name) {
    const FileFormat format = formatOfName(name);
    if (format == FileFormat::UNKNOWN) {
        throw UsageError(name, "unknown picture extension; use one such as .png, .jpg or .tif");
    }
    if (!canWrite(format)) {
        throw UsageError(name, std::string(getName(format)) +
                                   " files can be read but not written; use an extension such as .png, .jpg or .tif");
    }
    return format;
}

} // namespace zqx::pictures
