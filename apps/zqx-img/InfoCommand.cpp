// info: what a picture file holds, from its header where the format allows that.
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "Commands.h"
#include "Decode.h"
#include "Error.h"

namespace zqx::img::app {

namespace {

constexpr double METRES_PER_INCH = 0.0254;

const char* typeName(FREE_IMAGE_TYPE type) {
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

const char* colorTypeName(FREE_IMAGE_COLOR_TYPE type) {
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

const char* orientationName(int orientation) {
    static constexpr const char* NAMES[] = {"upright",
                                            "mirrored",
                                            "turned by 180 degrees",
                                            "mirrored top to bottom",
                                            "mirrored, to be turned by 270 degrees clockwise",
                                            "to be turned by 90 degrees clockwise",
                                            "mirrored, to be turned by 90 degrees clockwise",
                                            "to be turned by 270 degrees clockwise"};
    return orientation >= 1 && orientation <= 8 ? NAMES[orientation - 1] : "not a known value";
}

/// Text from a file may hold control characters that a terminal would obey.
std::string harmless(const char* text) {
    std::string result(text != nullptr ? text : "");
    std::erase_if(result, [](unsigned char c) { return c < ' ' || c == 0x7F; });
    return result;
}

void print(const char* label, const std::string& value) {
    std::printf("%-15s %s\n", label, value.c_str());
}

void printResolution(FIBITMAP* bitmap) {
    const unsigned x = FreeImage_GetDotsPerMeterX(bitmap);
    const unsigned y = FreeImage_GetDotsPerMeterY(bitmap);
    char text[96];
    std::snprintf(text, sizeof text, "%u x %u dots per metre (%.0f x %.0f dpi)", x, y, x * METRES_PER_INCH,
                  y * METRES_PER_INCH);
    print("resolution", x == 0 && y == 0 ? "not given" : text);
}

void printOrientation(FIBITMAP* bitmap) {
    FITAG* tag = nullptr;
    if (!FreeImage_GetMetadata(FIMD_EXIF_MAIN, bitmap, "Orientation", &tag) ||
        FreeImage_GetTagType(tag) != FIDT_SHORT || FreeImage_GetTagCount(tag) < 1) {
        return;
    }
    const int orientation = *static_cast<const WORD*>(FreeImage_GetTagValue(tag));
    print("orientation", std::to_string(orientation) + " (" + orientationName(orientation) + ")");
}

void printMetadata(FIBITMAP* bitmap) {
    static constexpr struct {
        FREE_IMAGE_MDMODEL model;
        const char* name;
    } MODELS[] = {{FIMD_COMMENTS, "comments"},
                  {FIMD_EXIF_MAIN, "Exif main"},
                  {FIMD_EXIF_EXIF, "Exif camera"},
                  {FIMD_EXIF_GPS, "Exif GPS"},
                  {FIMD_EXIF_MAKERNOTE, "maker note"},
                  {FIMD_EXIF_INTEROP, "Exif interop"},
                  {FIMD_IPTC, "IPTC"},
                  {FIMD_XMP, "XMP"},
                  {FIMD_GEOTIFF, "GeoTIFF"},
                  {FIMD_ANIMATION, "animation"},
                  {FIMD_CUSTOM, "custom"},
                  {FIMD_EXIF_RAW, "Exif raw"}};
    std::string list;
    for (const auto& [model, name] : MODELS) {
        if (const unsigned count = FreeImage_GetMetadataCount(model, bitmap); count > 0) {
            list += (list.empty() ? "" : ", ") + std::string(name) + " " + std::to_string(count);
        }
    }
    print("metadata", list.empty() ? "none" : list);
}

void printExif(FIBITMAP* bitmap) {
    static constexpr struct {
        FREE_IMAGE_MDMODEL model;
        const char* key;
        const char* label;
    } FIELDS[] = {{FIMD_EXIF_MAIN, "Make", "camera make"},        {FIMD_EXIF_MAIN, "Model", "camera model"},
                  {FIMD_EXIF_EXIF, "DateTimeOriginal", "taken"},  {FIMD_EXIF_EXIF, "ExposureTime", "exposure time"},
                  {FIMD_EXIF_EXIF, "FNumber", "f-number"},        {FIMD_EXIF_EXIF, "ISOSpeedRatings", "ISO speed"},
                  {FIMD_EXIF_EXIF, "FocalLength", "focal length"}};
    for (const auto& [model, key, label] : FIELDS) {
        FITAG* tag = nullptr;
        if (FreeImage_GetMetadata(model, bitmap, key, &tag)) {
            print(label, harmless(FreeImage_TagToString(model, tag)));
        }
    }
}

struct InfoOptions {
    std::string name;
    LoadOptions loading;
};

void runInfo(const InfoOptions& options) {
    const std::string& name = options.name;
    InputFile file(name);
    const FREE_IMAGE_FORMAT format = examine(file, options.loading.limits).format; // some have to be decoded
    const Bitmap picture = decodeBitmap(file, format, FreeImage_FIFSupportsNoPixels(format) ? FIF_LOAD_NOPIXELS : 0);
    FIBITMAP* bitmap = picture.get();
    print("file", harmless(name.c_str()));
    print("format", std::string(FreeImage_GetFormatFromFIF(format)) + " (" + FreeImage_GetFIFDescription(format) + ")");
    print("size", std::to_string(FreeImage_GetWidth(bitmap)) + " x " + std::to_string(FreeImage_GetHeight(bitmap)));
    print("bits per pixel", std::to_string(FreeImage_GetBPP(bitmap)));
    print("samples", typeName(FreeImage_GetImageType(bitmap)));
    print("colour", colorTypeName(FreeImage_GetColorType(bitmap)));
    print("transparency", FreeImage_IsTransparent(bitmap) ? "yes" : "no");
    printResolution(bitmap);
    const FIICCPROFILE* profile = FreeImage_GetICCProfile(bitmap);
    const unsigned size = profile != nullptr && profile->data != nullptr ? profile->size : 0;
    print("colour profile", size > 0 ? std::to_string(size) + " bytes" : "none");
    printOrientation(bitmap);
    printMetadata(bitmap);
    printExif(bitmap);
}

} // namespace

void addInfoCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("info", "Tell what a picture file holds");
    const auto options = std::make_shared<InfoOptions>();
    command.add_option("FILE", options->name, "The picture")->type_name("FILE")->required();
    options->loading.addLimitsTo(command);
    command.footer("Example:\n  zqx-img info photo.jpg\n");
    command.callback([options] { runInfo(*options); });
}

} // namespace zqx::img::app
