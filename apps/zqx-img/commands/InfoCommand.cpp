// info: what a picture file holds, from its header where the format allows that.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "commands/Commands.h"
#include "options/ReadingOptions.h"
#include "terminal/Output.h"
#include "zqx/pictures/codecs/Decode.h"
#include "zqx/pictures/codecs/Metadata.h"
#include "zqx/pictures/metadata/ExifSummary.h"
#include "zqx/pictures/metadata/MetadataReader.h"
#include "zqx/text/Json.h"
#include "zqx/text/Numbers.h"
#include "zqx/text/Width.h"

namespace zqx::app {

using namespace pictures;

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

struct Info {
    std::string name;
    FREE_IMAGE_FORMAT format;
    Bitmap bitmap;
    SourceMetadata metadata;
    ExifSummary exif;

    FIBITMAP* get() const { return bitmap.get(); }
};

Info inspect(const std::string& name, const LoadLimits& limits) {
    InputFile file = openPicture(name);
    const FREE_IMAGE_FORMAT format = examine(file, limits).format; // some have to be decoded
    Info info{name, format, {}, {}, {}};
    info.bitmap = decodeBitmap(file, format, FreeImage_FIFSupportsNoPixels(format) ? FIF_LOAD_NOPIXELS : 0);
    info.metadata = readMetadata(name, format);
    completeResolution(info.get(), info.metadata);
    completeFrom(info.get(), info.metadata.blocks);
    info.exif = summarizeExif(info.metadata.blocks.exif);
    return info;
}

struct Size {
    const char* label;
    const char* key;
    std::size_t bytes;
};

std::vector<Size> metadataSizes(const Metadata& metadata) {
    return {{"Exif", "exif", metadata.exif.size()},
            {"IPTC", "iptc", metadata.iptc.size()},
            {"XMP", "xmp", metadata.xmp.size()}};
}

void printValue(const char* label, const std::string& value) {
    printLine(text::padded(label, 15) + " " + value);
}

void printResolution(FIBITMAP* bitmap) {
    const unsigned x = FreeImage_GetDotsPerMeterX(bitmap);
    const unsigned y = FreeImage_GetDotsPerMeterY(bitmap);
    const std::string resolution = std::to_string(x) + " x " + std::to_string(y) + " dots per metre (" +
                                   text::fixed(x * METRES_PER_INCH, 0) + " x " + text::fixed(y * METRES_PER_INCH, 0) +
                                   " dpi)";
    printValue("resolution", x == 0 && y == 0 ? "not given" : resolution);
}

void printMetadata(const Metadata& metadata) {
    std::string list;
    for (const auto& [label, key, bytes] : metadataSizes(metadata)) {
        if (bytes > 0) {
            list += (list.empty() ? "" : ", ") + std::string(label) + " " + std::to_string(bytes) + " bytes";
        }
    }
    if (const std::size_t count = commentsIn(metadata.comments).size(); count > 0) {
        list += (list.empty() ? "" : ", ") + std::to_string(count) + (count == 1 ? " comment" : " comments");
    }
    printValue("metadata", list.empty() ? "none" : list);
}

void printText(const Info& info) {
    FIBITMAP* bitmap = info.get();
    printValue("file", info.name);
    printValue("format", std::string(FreeImage_GetFormatFromFIF(info.format)) + " (" +
                             FreeImage_GetFIFDescription(info.format) + ")");
    printValue("size",
               std::to_string(FreeImage_GetWidth(bitmap)) + " x " + std::to_string(FreeImage_GetHeight(bitmap)));
    printValue("bits per pixel", std::to_string(FreeImage_GetBPP(bitmap)));
    printValue("samples", typeName(FreeImage_GetImageType(bitmap)));
    printValue("colour", colorTypeName(FreeImage_GetColorType(bitmap)));
    printValue("transparency", FreeImage_IsTransparent(bitmap) ? "yes" : "no");
    printResolution(bitmap);
    const std::size_t profile = info.metadata.blocks.icc.size();
    printValue("colour profile", profile > 0 ? std::to_string(profile) + " bytes" : "none");
    if (const int orientation = info.metadata.orientation; orientation != UPRIGHT) {
        printValue("orientation", std::to_string(orientation) + " (" + describeOrientation(orientation) + ")");
    }
    printMetadata(info.metadata.blocks);
    for (const ExifField& field : info.exif.fields) {
        printValue(field.label, field.value);
    }
    if (info.exif.hasPosition) {
        printValue("GPS position", "yes, it tells where the picture was taken (--strip exif leaves it out)");
    }
}

void writeMetadata(text::JsonWriter& json, const Info& info) {
    json.key("metadata"); // sizes in bytes
    json.beginObject();
    json.member("icc", info.metadata.blocks.icc.size());
    for (const auto& [label, key, bytes] : metadataSizes(info.metadata.blocks)) {
        json.member(key, bytes);
    }
    json.endObject();
    json.key("comments");
    json.beginArray();
    for (const auto& [keyword, text] : commentsIn(info.metadata.blocks.comments)) {
        json.beginObject();
        json.member("keyword", keyword);
        json.member("text", text);
        json.endObject();
    }
    json.endArray();
    json.key("exif");
    json.beginObject();
    for (const ExifField& field : info.exif.fields) {
        json.member(field.key, field.value);
    }
    json.member("gpsPosition", info.exif.hasPosition);
    json.endObject();
}

void printJson(const Info& info) {
    FIBITMAP* bitmap = info.get();
    text::JsonWriter json({.indent = 4});
    json.beginObject();
    json.member("file", info.name);
    json.member("format", FreeImage_GetFormatFromFIF(info.format));
    json.member("width", FreeImage_GetWidth(bitmap));
    json.member("height", FreeImage_GetHeight(bitmap));
    json.member("bitsPerPixel", FreeImage_GetBPP(bitmap));
    json.member("samples", typeName(FreeImage_GetImageType(bitmap)));
    json.member("colour", colorTypeName(FreeImage_GetColorType(bitmap)));
    json.member("transparency", FreeImage_IsTransparent(bitmap) != 0);
    json.member("dotsPerMetreX", FreeImage_GetDotsPerMeterX(bitmap));
    json.member("dotsPerMetreY", FreeImage_GetDotsPerMeterY(bitmap));
    json.member("orientation", info.metadata.orientation);
    writeMetadata(json, info);
    json.endObject();
    print(json.text() + "\n");
}

struct InfoOptions {
    std::string name;
    bool json = false;
    LoadOptions loading;
};

constexpr const char* FOOTER = R"(
The size is that of the stored picture; what the orientation says is done when the picture is read. The sizes of
metadata are of what other commands carry over to their output.

Examples:
  zqx-img info photo.jpg
  zqx-img info photo.jpg --json

Exit codes: 0 done, 1 the file cannot be read, 2 the command line cannot be meant.
)";

} // namespace

void addInfoCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("info", "Tell what a picture file holds");
    const auto options = std::make_shared<InfoOptions>();
    command.add_option("FILE", options->name, "The picture")->type_name("FILE")->required();
    command.add_flag("--json", options->json, "Tell it as one JSON object");
    addLimitOptions(command, options->loading.limits);
    command.footer(FOOTER);
    command.callback([options] {
        const Info info = inspect(options->name, options->loading.limits);
        options->json ? printJson(info) : printText(info);
    });
}

} // namespace zqx::app
