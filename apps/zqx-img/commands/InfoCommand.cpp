// info: what a picture file contains, from its header where the format allows that.
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include "commands/Commands.h"
#include "options/ReadingOptions.h"
#include "terminal/Terminal.h"
#include "zqx/pictures/codecs/Decode.h"
#include "zqx/pictures/codecs/Metadata.h"
#include "zqx/pictures/metadata/ExifSummary.h"
#include "zqx/pictures/metadata/MetadataReader.h"

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

/// Valid UTF-8, whatever bytes a file or its name hold: others become the replacement character.
std::string toUtf8(const std::string& text) {
    constexpr unsigned REPLACEMENT = 0xFFFD;
    const std::string padded = text + std::string(4, '\0'); // decoding reads to the end of what a first byte announces
    rapidjson::StringBuffer result;
    for (std::size_t i = 0; i < text.size();) {
        rapidjson::StringStream source(padded.c_str() + i);
        unsigned codepoint = 0;
        const bool valid = rapidjson::UTF8<>::Decode(source, &codepoint);
        rapidjson::UTF8<>::Encode(result, valid ? codepoint : REPLACEMENT);
        i += valid ? source.Tell() : 1;
    }
    return {result.GetString(), result.GetSize()};
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
    print("metadata", list.empty() ? "none" : list);
}

void printText(const Info& info) {
    FIBITMAP* bitmap = info.get();
    print("file", harmless(info.name));
    print("format",
          std::string(FreeImage_GetFormatFromFIF(info.format)) + " (" + FreeImage_GetFIFDescription(info.format) + ")");
    print("size", std::to_string(FreeImage_GetWidth(bitmap)) + " x " + std::to_string(FreeImage_GetHeight(bitmap)));
    print("bits per pixel", std::to_string(FreeImage_GetBPP(bitmap)));
    print("samples", typeName(FreeImage_GetImageType(bitmap)));
    print("colour", colorTypeName(FreeImage_GetColorType(bitmap)));
    print("transparency", FreeImage_IsTransparent(bitmap) ? "yes" : "no");
    printResolution(bitmap);
    const std::size_t profile = info.metadata.blocks.icc.size();
    print("colour profile", profile > 0 ? std::to_string(profile) + " bytes" : "none");
    if (const int orientation = info.metadata.orientation; orientation != UPRIGHT) {
        print("orientation", std::to_string(orientation) + " (" + describeOrientation(orientation) + ")");
    }
    printMetadata(info.metadata.blocks);
    for (const ExifField& field : info.exif.fields) {
        print(field.label, field.value);
    }
    if (info.exif.hasPosition) {
        print("GPS position", "yes, the file says where the picture was taken (--strip exif removes it)");
    }
}

using JsonWriter = rapidjson::PrettyWriter<rapidjson::StringBuffer>;

void writeText(JsonWriter& json, const char* key, const std::string& value) {
    json.Key(key);
    json.String(toUtf8(value).c_str());
}

void writeNumber(JsonWriter& json, const char* key, std::uint64_t value) {
    json.Key(key);
    json.Uint64(value);
}

void writeFlag(JsonWriter& json, const char* key, bool value) {
    json.Key(key);
    json.Bool(value);
}

void writeMetadata(JsonWriter& json, const Info& info) {
    json.Key("metadata"); // sizes in bytes
    json.StartObject();
    writeNumber(json, "icc", info.metadata.blocks.icc.size());
    for (const auto& [label, key, bytes] : metadataSizes(info.metadata.blocks)) {
        writeNumber(json, key, bytes);
    }
    json.EndObject();
    json.Key("comments");
    json.StartArray();
    for (const auto& [keyword, text] : commentsIn(info.metadata.blocks.comments)) {
        json.StartObject();
        writeText(json, "keyword", keyword);
        writeText(json, "text", text);
        json.EndObject();
    }
    json.EndArray();
    json.Key("exif");
    json.StartObject();
    for (const ExifField& field : info.exif.fields) {
        writeText(json, field.key, field.value);
    }
    writeFlag(json, "gpsPosition", info.exif.hasPosition);
    json.EndObject();
}

void printJson(const Info& info) {
    FIBITMAP* bitmap = info.get();
    rapidjson::StringBuffer text;
    JsonWriter json(text);
    json.StartObject();
    writeText(json, "file", info.name);
    writeText(json, "format", FreeImage_GetFormatFromFIF(info.format));
    writeNumber(json, "width", FreeImage_GetWidth(bitmap));
    writeNumber(json, "height", FreeImage_GetHeight(bitmap));
    writeNumber(json, "bitsPerPixel", FreeImage_GetBPP(bitmap));
    writeText(json, "samples", typeName(FreeImage_GetImageType(bitmap)));
    writeText(json, "colour", colorTypeName(FreeImage_GetColorType(bitmap)));
    writeFlag(json, "transparency", FreeImage_IsTransparent(bitmap) != 0);
    writeNumber(json, "dotsPerMetreX", FreeImage_GetDotsPerMeterX(bitmap));
    writeNumber(json, "dotsPerMetreY", FreeImage_GetDotsPerMeterY(bitmap));
    json.Key("orientation");
    json.Int(info.metadata.orientation);
    writeMetadata(json, info);
    json.EndObject();
    std::printf("%s\n", text.GetString());
}

struct InfoOptions {
    std::string name;
    bool json = false;
    LoadOptions loading;
};

constexpr const char* FOOTER = R"(
The size is that of the stored picture, before it is turned upright. The sizes of metadata are those of what other
commands copy to their output.

Examples:
  zqx-img info photo.jpg
  zqx-img info photo.jpg --json

Exit codes: 0 success, 1 the file cannot be read, 2 invalid command line.
)";

} // namespace

void addInfoCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("info", "Show what a picture file contains");
    const auto options = std::make_shared<InfoOptions>();
    command.add_option("FILE", options->name, "The picture")->type_name("FILE")->required();
    command.add_flag("--json", options->json, "Print it as one JSON object");
    addLimitOptions(command, options->loading.limits);
    command.footer(FOOTER);
    command.callback([options] {
        const Info info = inspect(options->name, options->loading.limits);
        options->json ? printJson(info) : printText(info);
    });
}

} // namespace zqx::app
