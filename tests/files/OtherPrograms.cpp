// A program that is missing or fails is an exception, hence a failed test: without a judge nothing is proven.
#include "OtherPrograms.h"

#include <stdexcept>

#include <support/Process.h>

namespace zqx::img::test {

namespace {

constexpr const char* MAGICK = "convert-im6.q16hdri"; // the build that keeps floats

std::string judge(const std::vector<std::string>& command) {
    Outcome outcome = runCommand(command);
    if (outcome.exitCode != 0) {
        throw std::runtime_error(command.front() + " failed: " + outcome.err);
    }
    return std::move(outcome.out);
}

/// Options that describe raw samples.
std::vector<std::string> rawOptions(Depth depth) {
    std::vector<std::string> options = {"-depth", std::to_string(8 * static_cast<int>(depth)), "-endian", "LSB"};
    if (depth == Depth::FLOAT) {
        options.insert(options.end(), {"-define", "quantum:format=floating-point"});
    }
    return options;
}

/// The name of the raw format with as many channels.
std::string rawFormat(int channels) {
    return channels == 1 ? "gray:" : channels == 3 ? "rgb:" : "rgba:";
}

template <typename Container>
void append(std::vector<std::string>& list, const Container& items) {
    list.insert(list.end(), items.begin(), items.end());
}

} // namespace

void writeWithMagick(const Samples& samples, const std::string& file, const std::vector<std::string>& options) {
    const std::string raw = file.substr(file.find(':') + 1) + ".raw";
    writeFile(raw, samples.bytes);
    std::vector<std::string> command = {MAGICK, "-size",
                                        std::to_string(samples.width) + 'x' + std::to_string(samples.height)};
    append(command, rawOptions(samples.depth));
    command.push_back(rawFormat(samples.channels) + raw);
    if (samples.depth == Depth::FLOAT) {
        append(command, std::vector<std::string>{"-set", "colorspace", samples.channels == 1 ? "LinearGray" : "RGB"});
    }
    append(command, options);
    command.push_back(file);
    judge(command);
}

Samples readWithMagick(const std::string& file, int channels, Depth depth) {
    const std::string size = judge({MAGICK, file, "-format", "%w %h", "info:"});
    std::size_t end = 0;
    Samples samples{std::stoi(size, &end), 0, channels, depth, {}};
    samples.height = std::stoi(size.substr(end));
    // Numbers are wanted as they lie in the file: calling them all sRGB keeps them from being encoded.
    std::vector<std::string> command = {MAGICK, file,         "-auto-orient",
                                        "-set", "colorspace", channels == 1 ? "Gray" : "sRGB"};
    append(command, rawOptions(depth));
    command.push_back(rawFormat(channels) + '-');
    samples.bytes = judge(command);
    return samples;
}

std::string xmpFromExifTool(const std::string& file) {
    return judge({"exiftool", "-b", "-XMP", file});
}

} // namespace zqx::img::test
