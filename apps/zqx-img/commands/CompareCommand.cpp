// compare: how far two picture files are from each other, in numbers and as a picture.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <CLI/CLI.hpp>

#include "commands/Commands.h"
#include "options/ReadingOptions.h"
#include "terminal/Output.h"
#include "zqx/pictures/codecs/Alpha.h"
#include "zqx/pictures/codecs/Decode.h"
#include "zqx/pictures/codecs/Depth16.h"
#include "zqx/pictures/codecs/Encode.h"
#include "zqx/pictures/codecs/EncodeOptions.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/text/Json.h"
#include "zqx/text/Numbers.h"
#include "zqx/text/Width.h"

namespace zqx::app {

using namespace pictures;

namespace {

constexpr int DIFFERENT = 3;
constexpr int INCOMPARABLE = 4;

struct CompareOptions {
    std::array<std::string, 2> files;
    std::string tolerance = "0";
    std::string picture;
    LoadOptions loading;
    bool json = false;
};

/// Pictures that are both encoded are compared by their codes, others by linear light.
struct Scale {
    bool encoded;
    double white; ///< the number that stands for 1
};

Scale commonScale(const Picture& a, const Picture& b) {
    const int depth = std::max(depthOf(a.stored), depthOf(b.stored));
    return {depth < 32, depth == 8 ? 255.0 : depth == 16 ? 65535.0 : 1.0};
}

std::size_t channelsOf(const Picture& picture) {
    return hasAlpha(picture.form) ? 4 : hasColor(picture.form) ? 3 : 1;
}

const char* channelName(std::size_t channel, std::size_t channels) {
    static constexpr const char* NAMES[] = {"red", "green", "blue", "alpha"};
    return channels == 1 ? "grey" : NAMES[channel];
}

/// Hands out the numbers of a picture on a scale, row by row from the top, the channels of a pixel in the order of
/// their names.
class Numbers {
public:
    Numbers(const Picture& picture, Scale scale)
        : mPicture(picture), mScale(scale), mChannels(channelsOf(picture)), mValues(picture.width() * mChannels) {}

    const std::vector<double>& row(unsigned y) {
        const BYTE* row = FreeImage_GetScanLine(mPicture.bitmap.get(), static_cast<int>(mPicture.height() - 1 - y));
        if (isFloat(mPicture.form)) {
            readFloats(reinterpret_cast<const float*>(row));
        } else {
            readBytes(row);
        }
        return mValues;
    }

private:
    bool isAlpha(std::size_t i) const { return mChannels == 4 && i % 4 == 3; }

    void readFloats(const float* row) {
        for (std::size_t i = 0; i < mValues.size(); ++i) {
            mValues[i] = !mScale.encoded ? row[i] : isAlpha(i) ? encodeUnit16(row[i]) : encode16(row[i]);
        }
    }

    void readBytes(const BYTE* row) {
        static constexpr std::array<std::size_t, 4> PLACES = {FI_RGBA_RED, FI_RGBA_GREEN, FI_RGBA_BLUE, FI_RGBA_ALPHA};
        const double step = mScale.white / 255.0; // a whole number of codes of 16 bits, too
        for (std::size_t i = 0; i < mValues.size(); ++i) {
            const std::size_t channel = i % mChannels;
            const BYTE byte = row[mChannels == 1 ? i : i - channel + PLACES[channel]];
            mValues[i] = mScale.encoded ? byte * step
                         : isAlpha(i)   ? byte / 255.0
                                        : static_cast<double>(img::srgb2linear(byte));
        }
    }

    const Picture& mPicture;
    Scale mScale;
    std::size_t mChannels;
    std::vector<double> mValues;
};

/// Two of a kind are equal, also two that are no numbers; a number and none are infinitely far from each other.
double distance(double a, double b) {
    if (a == b || (std::isnan(a) && std::isnan(b))) {
        return 0.0;
    }
    const double difference = std::abs(a - b);
    return std::isnan(difference) ? std::numeric_limits<double>::infinity() : difference;
}

/// What a comparison finds. Differences are on the scale.
struct Findings {
    double largest = 0.0;
    unsigned x = 0;
    unsigned y = 0;
    std::size_t channel = 0;
    double sum = 0.0;
    double sumOfSquares = 0.0;
    std::uint64_t differingPixels = 0;
};

void add(Findings& findings, const std::vector<double>& a, const std::vector<double>& b, unsigned y,
         std::size_t channels) {
    for (std::size_t first = 0; first < a.size(); first += channels) {
        bool differs = false;
        for (std::size_t channel = 0; channel < channels; ++channel) {
            const double difference = distance(a[first + channel], b[first + channel]);
            findings.sum += difference;
            findings.sumOfSquares += difference * difference;
            differs |= difference > 0.0;
            if (difference > findings.largest) {
                findings.largest = difference;
                findings.x = static_cast<unsigned>(first / channels);
                findings.y = y;
                findings.channel = channel;
            }
        }
        findings.differingPixels += differs ? 1 : 0;
    }
}

Findings compare(const Picture& a, const Picture& b, Scale scale) {
    Numbers left(a, scale);
    Numbers right(b, scale);
    Findings findings;
    for (unsigned y = 0; y < a.height(); ++y) {
        add(findings, left.row(y), right.row(y), y, channelsOf(a));
    }
    return findings;
}

/// The differences so much brighter that the largest one is white; differences of alpha brighten all channels.
Bitmap paintDifferences(const Picture& a, const Picture& b, Scale scale, double largest) {
    const std::size_t channels = channelsOf(a);
    const std::size_t painted = std::min<std::size_t>(channels, 3);
    Bitmap bitmap = allocateBitmap(painted == 1 ? Form::GREY8 : Form::RGB8, a.width(), a.height());
    const double factor = largest > 0.0 ? 255.0 / largest : 0.0;
    const auto shade = [=](double difference) { // any difference at all is to be seen
        return static_cast<BYTE>(std::isfinite(difference) ? std::min(std::ceil(factor * difference), 255.0) : 255.0);
    };
    static constexpr std::array<std::size_t, 3> PLACES = {FI_RGBA_RED, FI_RGBA_GREEN, FI_RGBA_BLUE};
    Numbers left(a, scale);
    Numbers right(b, scale);
    for (unsigned y = 0; y < a.height(); ++y) {
        const std::vector<double>& from = left.row(y);
        const std::vector<double>& to = right.row(y);
        BYTE* row = FreeImage_GetScanLine(bitmap.get(), static_cast<int>(a.height() - 1 - y));
        for (unsigned x = 0; x < a.width(); ++x) {
            const std::size_t at = x * channels;
            const double alpha = channels == 4 ? distance(from[at + 3], to[at + 3]) : 0.0;
            for (std::size_t channel = 0; channel < painted; ++channel) {
                const double difference = std::max(distance(from[at + channel], to[at + channel]), alpha);
                row[x * painted + (painted == 1 ? 0 : PLACES[channel])] = shade(difference);
            }
        }
    }
    return bitmap;
}

void writeDifferences(const std::string& name, FREE_IMAGE_FORMAT format, const Picture& a, const Picture& b,
                      Scale scale, double largest) {
    const Form painted = hasColor(a.form) ? Form::RGB8 : Form::GREY8;
    const Form form = chooseForm(name, format, painted);
    Bitmap bitmap = paintDifferences(a, b, scale, largest);
    if (form != painted) {
        Bitmap converted = allocateBitmap(form, a.width(), a.height());
        viewOf(converted, form).convertFrom(viewOf(bitmap, painted));
        bitmap = std::move(converted);
    }
    Picture plain; // nothing travels beside these pixels
    plain.bitmap = allocateBitmap(painted, 1, 1);
    plain.form = plain.stored = painted;
    OutputFile file(name);
    encodePicture(file, name, format, std::move(bitmap), form, plain, EncodeOptions());
    file.commit();
}

/// A number, or a fraction such as 2/255.
double parseTolerance(const std::string& text) {
    const auto fail = [&text]() -> double {
        throw UsageError("--tolerance", "\"" + text + "\" is not a number from 0 on or a fraction such as 2/255");
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

std::string sizeOf(const Picture& picture) {
    return std::to_string(picture.width()) + " x " + std::to_string(picture.height());
}

std::string channelsInWords(const Picture& picture) {
    return hasAlpha(picture.form) ? "colour with alpha" : hasColor(picture.form) ? "colour" : "grey";
}

/// Why two pictures have no pixels to be compared; nothing when they have.
std::optional<std::string> obstacle(const CompareOptions& options, const Picture& a, const Picture& b) {
    const auto sentence = [&options](const std::string& left, const std::string& right) {
        return options.files[0] + " is " + left + ", " + options.files[1] + " is " + right;
    };
    if (sizeOf(a) != sizeOf(b)) {
        return sentence(sizeOf(a), sizeOf(b));
    }
    if (channelsOf(a) != channelsOf(b)) {
        return sentence(channelsInWords(a), channelsInWords(b));
    }
    return std::nullopt;
}

/// The result in the units that people and programs are told.
struct Report {
    const Picture& a;
    const Picture& b;
    Scale scale;
    Findings findings;
    double tolerance;

    double pixels() const { return static_cast<double>(a.width()) * a.height(); }
    double numbers() const { return pixels() * static_cast<double>(channelsOf(a)); }
    double largest() const { return findings.largest / scale.white; }
    double mean() const { return findings.sum / numbers() / scale.white; }
    /// Peak signal-to-noise ratio in decibels, the peak being 1; infinite for equal pictures.
    double psnr() const { return -10.0 * std::log10(findings.sumOfSquares / numbers() / (scale.white * scale.white)); }
    bool isEqual() const { return largest() <= tolerance; }
};

std::string inDigits(double value) {
    if (std::isinf(value)) {
        return value > 0.0 ? "infinite" : "-infinite";
    }
    return text::significant(value);
}

/// "0.0117647", and the steps of the scale where it has some.
std::string inSteps(double normalised, Scale scale) {
    return inDigits(normalised) +
           (scale.encoded ? " (" + inDigits(normalised * scale.white) + " of " + inDigits(scale.white) + ")" : "");
}

void printText(const CompareOptions& options, const Report& report) {
    const Findings& findings = report.findings;
    const auto line = [](const char* label, const std::string& value) {
        printLine(text::padded(label, 19) + " " + value);
    };
    for (const auto& [file, picture] :
         {std::pair(options.files[0], &report.a), std::pair(options.files[1], &report.b)}) {
        line(picture == &report.a ? "first" : "second",
             file + ", " + sizeOf(*picture) + ", " + nameOf(picture->stored));
    }
    line("compared as", report.scale.encoded ? "stored numbers, white is 1" : "linear light, white is 1");
    std::string largest = inSteps(report.largest(), report.scale);
    if (findings.largest > 0.0) {
        largest += std::string(", ") + channelName(findings.channel, channelsOf(report.a)) + " of pixel " +
                   std::to_string(findings.x) + ", " + std::to_string(findings.y);
    }
    line("largest difference", largest);
    line("mean difference", inSteps(report.mean(), report.scale));
    line("PSNR", std::isinf(report.psnr()) ? inDigits(report.psnr()) : text::fixed(report.psnr(), 2) + " dB");
    line("differing pixels", std::to_string(findings.differingPixels) + " of " + text::fixed(report.pixels(), 0));
    line("result", findings.largest == 0.0 ? "equal" : report.isEqual() ? "equal within the tolerance" : "different");
}

void describe(text::JsonWriter& json, const char* name, const std::string& file, const Picture& picture) {
    json.key(name);
    json.beginObject();
    json.member("file", file);
    json.member("width", picture.width());
    json.member("height", picture.height());
    json.member("form", nameOf(picture.stored));
    json.endObject();
}

void writeFindings(text::JsonWriter& json, const Report& report) {
    json.member("scale", report.scale.encoded ? "stored" : "linear");
    json.member("tolerance", report.tolerance);
    json.member("largest", report.largest());
    json.key("largestAt");
    if (report.findings.largest > 0.0) {
        json.beginObject();
        json.member("x", report.findings.x);
        json.member("y", report.findings.y);
        json.member("channel", channelName(report.findings.channel, channelsOf(report.a)));
        json.endObject();
    } else {
        json.null();
    }
    json.member("mean", report.mean());
    json.member("psnr", report.psnr());
    json.member("differingPixels", report.findings.differingPixels);
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

/// The same kind of alpha in both: products of alpha with colour are compared with their like, or not at all.
void alignAlpha(Picture& a, Picture& b) {
    if (a.alpha != b.alpha) {
        for (Picture* picture : {&a, &b}) {
            prepareAlpha(*picture, FIF_UNKNOWN, picture->form, true);
        }
    }
}

void runCompare(const CompareOptions& options) {
    const double tolerance = parseTolerance(options.tolerance);
    FREE_IMAGE_FORMAT format = FIF_UNKNOWN;
    if (!options.picture.empty()) {
        format = outputFormat(options.picture);
        OutputFile::check(options.picture);
    }
    Picture a = loadPicture(options.files[0], options.loading);
    Picture b = loadPicture(options.files[1], options.loading);
    if (const std::optional<std::string> reason = obstacle(options, a, b)) {
        if (options.json) {
            printJson(options, a, b, "incomparable", nullptr);
        } else {
            printLine(*reason);
        }
        throw ExitCode{INCOMPARABLE};
    }
    alignAlpha(a, b);
    const Scale scale = commonScale(a, b);
    const Report report{a, b, scale, compare(a, b, scale), tolerance};
    if (!options.picture.empty()) {
        writeDifferences(options.picture, format, a, b, scale, report.findings.largest);
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

The pixels are compared as they are stored, upright. Differences are told on a scale on which white is 1: an 8-bit step
is 1/255, a 16-bit step 1/65535, and floats are as they are. 8-bit and 16-bit pictures may be compared with each other;
an encoded picture and one of floats are both compared as linear light. Where only one of the two holds colour
multiplied by alpha (EXR, some float TIFF), it is divided. Two values that are no numbers count as equal. PSNR has 1 as
its peak and is infinite for equal pictures; in JSON null stands for infinite.

Examples:
  zqx-img compare before.png after.png
  zqx-img compare wanted.tif got.tif --tolerance 1/255
  zqx-img compare wanted.exr got.exr --tolerance 0.001 --json
  zqx-img compare a.jpg b.jpg --difference where.png

Exit codes: 0 no difference larger than the tolerance, 1 a file could not be read or written, 2 the command line cannot
be meant, 3 the pictures differ by more, 4 they differ in size or channels and cannot be compared.
)";

} // namespace

void addCompareCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("compare", "Tell how far two pictures are from each other");
    const auto options = std::make_shared<CompareOptions>();
    command.add_option("A", options->files[0], "A picture")->type_name("FILE")->required();
    command.add_option("B", options->files[1], "The picture to compare it with")->type_name("FILE")->required();
    command
        .add_option("--tolerance", options->tolerance,
                    "The largest difference that counts as equal, on a scale on which white is 1: 0.001 or 2/255")
        ->type_name("X")
        ->capture_default_str();
    command
        .add_option("--difference", options->picture,
                    "Also write a picture of the differences, so much brighter that the largest is white")
        ->type_name("FILE");
    command.add_flag("--json", options->json, "Tell the findings as a JSON object");
    addReadingOptions(command, options->loading);
    command.footer(FOOTER);
    command.callback([options] { runCompare(*options); });
}

} // namespace zqx::app
