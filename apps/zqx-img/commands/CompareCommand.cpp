// compare: reports how much two picture files differ, in numbers and as a picture.
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <CLI/CLI.hpp>

#include <zqx/tools/Compare.h>
#include <zqx/tools/MemoryGate.h>

#include "commands/Commands.h"
#include "commands/ResultFile.h"
#include "options/MemoryOption.h"
#include "options/ReadingOptions.h"
#include "terminal/Output.h"
#include "zqx/pictures/Writer.h"
#include "zqx/pictures/codecs/Decode.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/OutputFile.h"
#include "zqx/text/Json.h"
#include "zqx/text/Numbers.h"
#include "zqx/text/Width.h"
#include "zqx/tools/batch/OpenPicture.h"

namespace zqx::app {

using namespace pictures;
using namespace tools;

namespace {

constexpr int DIFFERENT = 3;
constexpr int INCOMPARABLE = 4;

struct CompareOptions {
    std::array<std::string, 2> files;
    std::string tolerance = "0";
    std::string picture;
    ReadOptions loading;
    std::uint64_t memory = 0; ///< the default
    bool json = false;
};

std::size_t getChannels(const Picture& picture) {
    return channelCount(picture.pixels.layout());
}

const char* channelName(std::size_t channel, std::size_t channels) {
    static constexpr const char* NAMES[] = {"red", "green", "blue", "alpha"};
    return channels == 1 ? "grey" : NAMES[channel];
}

/// Parses a number or a fraction such as 2/255.
double parseTolerance(const std::string& text) {
    const auto fail = [&text]() -> double {
        throw UsageError("--tolerance",
                         "\"" + text + "\" is neither a number of 0 or more nor a fraction such as 2/255");
    };
    const auto number = [&fail](std::string_view part) {
        double value = 0.0;
        const auto [end, failure] = std::from_chars(part.data(), part.data() + part.size(), value);
        return failure == std::errc() && end == part.data() + part.size() && value >= 0.0 && std::isfinite(value)
                   ? value
                   : fail();
    };
    const std::size_t slash = text.find('/');
    if (slash == std::string::npos) {
        return number(text);
    }
    const double divisor = number(std::string_view(text).substr(slash + 1));
    return divisor > 0.0 ? number(std::string_view(text).substr(0, slash)) / divisor : fail();
}

std::string formatSize(const Picture& picture) {
    return std::to_string(picture.width()) + " x " + std::to_string(picture.height());
}

std::string channelsInWords(const Picture& picture) {
    return hasAlpha(picture.stored) ? "colour with alpha" : hasColor(picture.stored) ? "colour" : "grey";
}

/// Why two pictures cannot be compared; nothing if they can.
std::optional<std::string> obstacle(const CompareOptions& options, const Picture& a, const Picture& b) {
    const auto sentence = [&options](const std::string& left, const std::string& right) {
        return options.files[0] + " is " + left + ", " + options.files[1] + " is " + right;
    };
    if (formatSize(a) != formatSize(b)) {
        return sentence(formatSize(a), formatSize(b));
    }
    if (getChannels(a) != getChannels(b)) {
        return sentence(channelsInWords(a), channelsInWords(b));
    }
    return std::nullopt;
}

/// The result in the units that are reported, in which white is 1.
struct Report {
    const Picture& a;
    const Picture& b;
    Comparison found;
    double tolerance;

    double largest() const { return found.largest / found.scale.white; }
    double mean() const { return found.mean / found.scale.white; }
    bool isEqual() const { return largest() <= tolerance; }
};

std::string inDigits(double value) {
    if (std::isinf(value)) {
        return value > 0.0 ? "infinite" : "-infinite";
    }
    return text::significant(value);
}

/// A difference as "0.0117647 (3 of 255)"; floats have no codes.
std::string inSteps(double normalised, ComparisonScale scale) {
    return inDigits(normalised) +
           (scale.encoded ? " (" + inDigits(normalised * scale.white) + " of " + inDigits(scale.white) + ")" : "");
}

void printText(const CompareOptions& options, const Report& report) {
    const Comparison& found = report.found;
    const auto line = [](const char* label, const std::string& value) {
        printLine(text::padded(label, 19) + " " + value);
    };
    for (const auto& [file, picture] :
         {std::pair(options.files[0], &report.a), std::pair(options.files[1], &report.b)}) {
        line(picture == &report.a ? "first" : "second",
             file + ", " + formatSize(*picture) + ", " + getName(picture->stored));
    }
    line("compared as", report.found.scale.encoded ? "stored numbers, white is 1" : "linear light, white is 1");
    std::string largest = inSteps(report.largest(), report.found.scale);
    if (found.largest > 0.0) {
        largest += std::string(", ") + channelName(found.channel, getChannels(report.a)) + " of pixel " +
                   std::to_string(found.x) + ", " + std::to_string(found.y);
    }
    line("largest difference", largest);
    line("mean difference", inSteps(report.mean(), report.found.scale));
    line("PSNR",
         std::isinf(report.found.psnr) ? inDigits(report.found.psnr) : text::fixed(report.found.psnr, 2) + " dB");
    line("differing pixels", std::to_string(found.differingPixels) + " of " + std::to_string(report.found.pixels));
    line("result", found.largest == 0.0 ? "equal" : report.isEqual() ? "equal within the tolerance" : "different");
}

void describe(text::JsonWriter& json, const char* name, const std::string& file, const Picture& picture) {
    json.key(name);
    json.beginObject();
    json.member("file", file);
    json.member("width", picture.width());
    json.member("height", picture.height());
    json.member("form", getName(picture.stored));
    json.endObject();
}

void writeFindings(text::JsonWriter& json, const Report& report) {
    json.member("scale", report.found.scale.encoded ? "stored" : "linear");
    json.member("tolerance", report.tolerance);
    json.member("largest", report.largest());
    json.key("largestAt");
    if (report.found.largest > 0.0) {
        json.beginObject();
        json.member("x", report.found.x);
        json.member("y", report.found.y);
        json.member("channel", channelName(report.found.channel, getChannels(report.a)));
        json.endObject();
    } else {
        json.null();
    }
    json.member("mean", report.mean());
    json.member("psnr", report.found.psnr);
    json.member("differingPixels", report.found.differingPixels);
}

void printJson(const CompareOptions& options, const Picture& a, const Picture& b, const char* result,
               const Report* report) {
    text::JsonWriter json({.indent = 2});
    json.beginObject();
    json.member("result", result);
    describe(json, "a", options.files[0], a);
    describe(json, "b", options.files[1], b);
    if (report != nullptr) {
        writeFindings(json, *report);
    }
    json.endObject();
    print(json.text() + "\n");
}

void runCompare(const CompareOptions& options) {
    const double tolerance = parseTolerance(options.tolerance);
    if (!options.picture.empty()) {
        checkResultFile(options.picture, {options.files[0], options.files[1]});
    }
    PictureFile first(options.files[0], options.loading.limits);
    PictureFile second(options.files[1], options.loading.limits);
    requireMemory({{memoryInput(first), memoryInput(second)}, {}}, options.memory);
    Picture a = readPicture(first, options.loading);
    Picture b = readPicture(second, options.loading);
    if (const std::optional<std::string> reason = obstacle(options, a, b)) {
        if (options.json) {
            printJson(options, a, b, "incomparable", nullptr);
        } else {
            printLine(*reason);
        }
        throw ExitCode{INCOMPARABLE};
    }
    alignAlpha(a, b);
    const Report report{a, b, compare(a, b), tolerance};
    if (!options.picture.empty()) {
        const PixelBuffer differences = paintDifferences(a, b, report.found);
        writeResultFile(options.picture, differences.image(), differences.layout(), Picture(), WriteOptions());
    }
    if (options.json) {
        printJson(options, a, b, report.isEqual() ? "equal" : "different", &report);
    } else {
        printText(options, report);
    }
    if (!report.isEqual()) {
        throw ExitCode{DIFFERENT};
    }
}

constexpr const char* FOOTER = R"(
"zqx-img --compare A B" is the same command.

Pixels are compared as stored, after turning pictures upright. Differences are reported on a scale on which white is 1:
an 8-bit step is 1/255, a 16-bit step 1/65535, and floats are taken as they are. 8-bit and 16-bit pictures may be
compared with each other; an encoded picture and a float picture are both compared as linear light. If only one of the
two has premultiplied alpha (EXR, some float TIFF), it is unpremultiplied first. NaN equals NaN. PSNR has a peak of 1
and is infinite for equal pictures; in JSON, null stands for infinite.

Examples:
  zqx-img compare before.png after.png
  zqx-img compare wanted.tif got.tif --tolerance 1/255
  zqx-img compare wanted.exr got.exr --tolerance 0.001 --json
  zqx-img compare a.jpg b.jpg --difference where.png

Exit codes: 0 equal within the tolerance, 1 a file could not be read or written, 2 invalid command line, 3 different by
more than the tolerance, 4 different in size or channels.
)";

} // namespace

void addCompareCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("compare", "Report how much two pictures differ");
    const auto options = std::make_shared<CompareOptions>();
    command.add_option("A", options->files[0], "A picture")->type_name("FILE")->required();
    command.add_option("B", options->files[1], "The picture to compare it with")->type_name("FILE")->required();
    command
        .add_option("--tolerance", options->tolerance,
                    "The largest difference that counts as equal, where white is 1: 0.001 or 2/255")
        ->type_name("X")
        ->capture_default_str();
    command
        .add_option("--difference", options->picture,
                    "Also write a picture of the differences, scaled so that the largest is white")
        ->type_name("FILE");
    command.add_flag("--json", options->json, "Print the result as a JSON object");
    addReadingOptions(command, options->loading);
    addMemoryOption(command, options->memory);
    command.footer(FOOTER);
    command.callback([options] { runCompare(*options); });
}

} // namespace zqx::app
