#include "Samples.h"

#include <cmath>
#include <cstring>

namespace zqx::img::test {

namespace {

constexpr int WIDTH = 37;
constexpr int HEIGHT = 23;

template <typename T>
double load(const std::string& bytes, std::size_t index) {
    T value;
    std::memcpy(&value, bytes.data() + index * sizeof(T), sizeof(T));
    return static_cast<double>(value);
}

template <typename T>
void store(std::string& bytes, std::size_t index, double number) {
    const T value = static_cast<T>(number);
    std::memcpy(bytes.data() + index * sizeof(T), &value, sizeof(T));
}

double largest(Depth depth) {
    return depth == Depth::BYTE ? 255.0 : depth == Depth::WORD ? 65535.0 : 1.0;
}

/// A number that jumps about in 0 to limit - 1.
unsigned scatter(unsigned number, unsigned limit) {
    return (number * 2654435761U >> 8U) % limit;
}

double motley(unsigned number, Depth depth) {
    switch (depth) {
    case Depth::BYTE: return 1 + scatter(number, 255);
    case Depth::WORD: return 1 + scatter(number, 65535);
    case Depth::FLOAT: return (1 + scatter(number, 1023)) / 256.0;
    }
    return 0.0;
}

double smooth(int x, int y, int channel, Depth depth) {
    const double ramp = (x * (channel + 1) + y * (5 - channel)) / 250.0;
    return depth == Depth::FLOAT ? std::floor(ramp * 256.0) / 256.0 : std::floor(ramp * largest(depth));
}

double findValue(Content content, int x, int y, int channel, int channels, Depth depth) {
    const auto column = static_cast<unsigned>(x);
    const auto row = static_cast<unsigned>(y);
    const auto colour = [=](unsigned index) { return motley(index * 4 + static_cast<unsigned>(channel), depth); };
    switch (content) {
    case Content::MOTLEY:
        return motley((row * WIDTH + column) * static_cast<unsigned>(channels) + static_cast<unsigned>(channel), depth);
    case Content::SMOOTH: return smooth(x, y, channel, depth);
    case Content::TWO_LEVELS: return scatter(row * WIDTH + column, 2) * largest(depth);
    case Content::FEW_COLOURS: return colour((column * 7 + row * 5) % 16);
    case Content::MANY_COLOURS: return colour((column * 7 + row * 13) % 200);
    }
    return 0.0;
}

} // namespace

double Samples::at(std::size_t index) const {
    switch (depth) {
    case Depth::BYTE: return load<std::uint8_t>(bytes, index);
    case Depth::WORD: return load<std::uint16_t>(bytes, index);
    case Depth::FLOAT: return load<float>(bytes, index);
    }
    return 0.0;
}

void Samples::set(std::size_t index, double value) {
    switch (depth) {
    case Depth::BYTE: store<std::uint8_t>(bytes, index, value); break;
    case Depth::WORD: store<std::uint16_t>(bytes, index, value); break;
    case Depth::FLOAT: store<float>(bytes, index, value); break;
    }
}

Samples blank(int width, int height, int channels, Depth depth) {
    const std::size_t size = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                             static_cast<std::size_t>(channels) * static_cast<std::size_t>(depth);
    return {width, height, channels, depth, std::string(size, '\0')};
}

Samples paint(Content content, int channels, Depth depth) {
    Samples samples = blank(WIDTH, HEIGHT, channels, depth);
    std::size_t index = 0;
    for (int y = 0; y < HEIGHT; ++y) {
        for (int x = 0; x < WIDTH; ++x) {
            for (int channel = 0; channel < channels; ++channel) {
                samples.set(index++, findValue(content, x, y, channel, channels, depth));
            }
        }
    }
    return samples;
}

Samples inColour(const Samples& samples) {
    if (samples.channels != 1) {
        return samples;
    }
    Samples colour = blank(samples.width, samples.height, 3, samples.depth);
    for (std::size_t i = 0; i < colour.count(); ++i) {
        colour.set(i, samples.at(i / 3));
    }
    return colour;
}

Samples flipped(const Samples& samples) {
    Samples result = blank(samples.width, samples.height, samples.channels, samples.depth);
    const std::size_t rowBytes = samples.bytes.size() / static_cast<std::size_t>(samples.height);
    for (std::size_t from = 0; from < samples.bytes.size(); from += rowBytes) {
        result.bytes.replace(samples.bytes.size() - rowBytes - from, rowBytes, samples.bytes, from, rowBytes);
    }
    return result;
}

::testing::AssertionResult isSame(const Samples& actual, const Samples& expected, double relativeTolerance) {
    if (actual.width != expected.width || actual.height != expected.height || actual.channels != expected.channels ||
        actual.depth != expected.depth || actual.bytes.size() != expected.bytes.size()) {
        return ::testing::AssertionFailure()
               << "shapes differ: " << actual.width << " x " << actual.height << " x " << actual.channels << ", "
               << actual.bytes.size() << " bytes, for " << expected.width << " x " << expected.height << " x "
               << expected.channels << ", " << expected.bytes.size() << " bytes";
    }
    for (std::size_t i = 0; i < expected.count(); ++i) {
        const double tolerance = relativeTolerance * std::abs(expected.at(i));
        if (!(std::abs(actual.at(i) - expected.at(i)) <= tolerance)) {
            const std::size_t pixel = i / static_cast<std::size_t>(expected.channels);
            const auto width = static_cast<std::size_t>(expected.width);
            return ::testing::AssertionFailure()
                   << "channel " << i % static_cast<std::size_t>(expected.channels) << " of pixel (" << pixel % width
                   << ", " << pixel / width << ") is " << actual.at(i) << " instead of " << expected.at(i);
        }
    }
    return ::testing::AssertionSuccess();
}

double meanDifference(const Samples& a, const Samples& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.count(); ++i) {
        sum += std::abs(a.at(i) - b.at(i));
    }
    return sum / (largest(a.depth) * static_cast<double>(a.count()));
}

} // namespace zqx::img::test
