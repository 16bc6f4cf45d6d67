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
#include "zqx/pictures/codecs/freeimage/FreeImageDecoder.h"
#include "zqx/pictures/metadata/InstalledCodec.h"
#include "zqx/pictures/metadata/Orientation.h"
#include "zqx/pictures/metadata/exiv2/ExifSummary.h"

namespace zqx::app {

using namespace pictures;

namespace {

constexpr double METRES_PER_INCH = 0.0254;

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
    FileFormat format;
    PixelDescription pixels;
    FileMetadata metadata;
    ExifSummary exif;
};

Info inspect(const std::string& name, const Limits& limits) {
    PictureFile file(name, limits);
    identify(file, limits);
    const FileFormat format = file.header.info.format; // some have to be decoded
    Info info{name, format, describeByFreeImage(file.input, format), readMetadata(name, file.header), {}};
    completeMetadata(info.metadata, info.pixels.metadata);
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

void printResolution(Resolution resolution) {
    const auto [x, y] = resolution;
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
    const PixelDescription& pixels = info.pixels;
    print("file", harmless(info.name));
    print("format", std::string(nameOf(info.format)) + " (" + descriptionOf(info.format) + ")");
    print("size", std::to_string(pixels.width) + " x " + std::to_string(pixels.height));
    print("bits per pixel", std::to_string(pixels.bitsPerPixel));
    print("samples", pixels.samples);
    print("colour", pixels.color);
    print("transparency", pixels.transparent ? "yes" : "no");
    printResolution(info.metadata.blocks.resolution);
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
    const PixelDescription& pixels = info.pixels;
    const Resolution resolution = info.metadata.blocks.resolution;
    rapidjson::StringBuffer text;
    JsonWriter json(text);
    json.StartObject();
    writeText(json, "file", info.name);
    writeText(json, "format", nameOf(info.format));
    writeNumber(json, "width", pixels.width);
    writeNumber(json, "height", pixels.height);
    writeNumber(json, "bitsPerPixel", pixels.bitsPerPixel);
    writeText(json, "samples", pixels.samples);
    writeText(json, "colour", pixels.color);
    writeFlag(json, "transparency", pixels.transparent);
    writeNumber(json, "dotsPerMetreX", resolution.x);
    writeNumber(json, "dotsPerMetreY", resolution.y);
    json.Key("orientation");
    json.Int(info.metadata.orientation);
    writeMetadata(json, info);
    json.EndObject();
    std::printf("%s\n", text.GetString());
}

struct InfoOptions {
    std::string name;
    bool json = false;
    ReadOptions loading;
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
