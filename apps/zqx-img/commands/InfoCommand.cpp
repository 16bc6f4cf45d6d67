// info: what a picture file contains, from its header where the format allows that.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "commands/Commands.h"
#include "options/MemoryOption.h"
#include "options/ReadingOptions.h"
#include "terminal/Output.h"
#include "zqx/pictures/codecs/Describe.h"
#include "zqx/pictures/metadata/Orientation.h"
#include "zqx/text/Json.h"
#include "zqx/text/Numbers.h"
#include "zqx/text/Width.h"
#include "zqx/tools/batch/OpenPicture.h"

namespace zqx::app {

using namespace pictures;

namespace {

constexpr double METRES_PER_INCH = 0.0254;

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

void printValue(const std::string& label, const std::string& value) {
    printLine(text::padded(label, 15) + " " + value);
}

void printResolution(Resolution resolution) {
    const auto [x, y] = resolution;
    const std::string words = std::to_string(x) + " x " + std::to_string(y) + " dots per metre (" +
                              text::fixed(x * METRES_PER_INCH, 0) + " x " + text::fixed(y * METRES_PER_INCH, 0) +
                              " dpi)";
    printValue("resolution", x == 0 && y == 0 ? "not given" : words);
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

void printText(const std::string& name, const PictureFacts& facts) {
    const PixelDescription& pixels = facts.pixels;
    printValue("file", name);
    printValue("format", std::string(getName(facts.format)) + " (" + getDescription(facts.format) + ")");
    printValue("size", std::to_string(pixels.width) + " x " + std::to_string(pixels.height));
    printValue("bits per pixel", std::to_string(pixels.bitsPerPixel));
    printValue("samples", pixels.samples);
    printValue("colour", pixels.color);
    printValue("transparency", pixels.transparent ? "yes" : "no");
    printResolution(facts.metadata.blocks.resolution);
    const std::size_t profile = facts.metadata.blocks.icc.size();
    printValue("colour profile", profile > 0 ? std::to_string(profile) + " bytes" : "none");
    if (const int orientation = facts.metadata.orientation; orientation != UPRIGHT) {
        printValue("orientation", std::to_string(orientation) + " (" + describeOrientation(orientation) + ")");
    }
    printMetadata(facts.metadata.blocks);
    for (const ExifField& field : facts.exif.fields) {
        printValue(field.label, field.value);
    }
    if (facts.exif.hasPosition) {
        printValue("GPS position", "yes, the file says where the picture was taken (--strip exif removes it)");
    }
}

void writeMetadata(text::JsonWriter& json, const PictureFacts& facts) {
    json.key("metadata"); // sizes in bytes
    json.beginObject();
    json.member("icc", facts.metadata.blocks.icc.size());
    for (const auto& [label, key, bytes] : metadataSizes(facts.metadata.blocks)) {
        json.member(key, bytes);
    }
    json.endObject();
    json.key("comments");
    json.beginArray();
    for (const auto& [keyword, text] : commentsIn(facts.metadata.blocks.comments)) {
        json.beginObject();
        json.member("keyword", keyword);
        json.member("text", text);
        json.endObject();
    }
    json.endArray();
    json.key("exif");
    json.beginObject();
    for (const ExifField& field : facts.exif.fields) {
        json.member(field.key, field.value);
    }
    json.member("gpsPosition", facts.exif.hasPosition);
    json.endObject();
}

void printJson(const std::string& name, const PictureFacts& facts) {
    const PixelDescription& pixels = facts.pixels;
    const Resolution resolution = facts.metadata.blocks.resolution;
    text::JsonWriter json({.indent = 4});
    json.beginObject();
    json.member("file", name);
    json.member("format", getName(facts.format));
    json.member("width", pixels.width);
    json.member("height", pixels.height);
    json.member("bitsPerPixel", pixels.bitsPerPixel);
    json.member("samples", pixels.samples);
    json.member("colour", pixels.color);
    json.member("transparency", pixels.transparent);
    json.member("dotsPerMetreX", resolution.x);
    json.member("dotsPerMetreY", resolution.y);
    json.member("orientation", facts.metadata.orientation);
    writeMetadata(json, facts);
    json.endObject();
    print(json.text() + "\n");
}

struct InfoOptions {
    std::string name;
    bool json = false;
    ReadOptions loading;
    std::uint64_t memory = 0; ///< no limit
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
    addReadingOptions(command, options->loading);
    addMemoryOption(command, options->memory);
    command.footer(FOOTER);
    command.callback([options] {
        PictureFile file(options->name, options->loading.limits);
        if (options->memory != 0) { // most formats are read no further than their header
            tools::requireMemory({{tools::memoryInput(file)}, {}}, options->memory);
        }
        const PictureFacts facts = describePicture(file, options->loading);
        options->json ? printJson(file.name(), facts) : printText(file.name(), facts);
    });
}

} // namespace zqx::app
