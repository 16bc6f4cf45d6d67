#include "kernels/samples/Codes16.h"

#include <array>
#include <cmath>
#include <cstddef>

#include "kernels/Rows.h"
#include "kernels/maths/Gamma.h"
#include "kernels/maths/ScalarMaths.h"
#include "kernels/samples/Element.h"
#include "kernels/samples/ThresholdEncoder.h"

namespace zqx::img::kernels {

namespace {

constexpr std::size_t CODES = 65536;
constexpr double MAX_CODE = CODES - 1;
constexpr std::size_t RGBA = 4; // channels, alpha last

using Encoder = ThresholdEncoder<CODES>;
using Decoder = std::array<float, CODES>;

/// The smallest float that is not less.
float roundUp(double value) {
    const auto nearest = static_cast<float>(value);
    return static_cast<double>(nearest) < value ? std::nextafter(nearest, 2.0F) : nearest;
}

// Each table is made with the first picture that needs it.

const Decoder& decoder() {
    static const Decoder table = [] {
        Decoder values{};
        for (std::size_t code = 0; code < CODES; ++code) {
            values[code] = static_cast<float>(maths::pow(static_cast<double>(code) / MAX_CODE, GAMMA));
        }
        return values;
    }();
    return table;
}

const Encoder& encoder() {
    static const Encoder table(
        [](std::size_t code) { return roundUp(maths::pow((static_cast<double>(code) - 0.5) / MAX_CODE, GAMMA)); });
    return table;
}

float decodeUnit16(std::uint16_t code) {
    return static_cast<float>(code) / static_cast<float>(MAX_CODE);
}

bool isAlpha(std::size_t channel) {
    return channel == RGBA - 1;
}

/// Where the float pixels of a row are.
template <typename Byte>
struct Pixels {
    Byte* first;
    std::size_t stride;
};

void decodeRow(const Decoder& decoded, const std::uint16_t* code, Pixels<std::uint8_t> pixels, std::size_t width,
               std::size_t channels) {
    std::uint8_t* pixel = pixels.first;
    for (std::size_t x = 0; x < width; ++x, pixel += pixels.stride) {
        for (std::size_t channel = 0; channel < channels; ++channel, ++code) {
            const float value = isAlpha(channel) ? decodeUnit16(*code) : decoded[*code];
            encodeElement<Encoding::FLOAT>(value, pixel, channel);
        }
    }
}

void encodeRow(const Encoder& encode, Pixels<const std::uint8_t> pixels, std::uint16_t* code, std::size_t width,
               std::size_t channels) {
    const std::uint8_t* pixel = pixels.first;
    for (std::size_t x = 0; x < width; ++x, pixel += pixels.stride) {
        for (std::size_t channel = 0; channel < channels; ++channel, ++code) {
            const float value = decodeElement<Encoding::FLOAT>(pixel, channel);
            *code = isAlpha(channel) ? encodeUnit16(value) : encode(value);
        }
    }
}

} // namespace

float decode16(std::uint16_t code) {
    return decoder()[code];
}

std::uint16_t encode16(float v) {
    return encoder()(v);
}

std::uint16_t encodeUnit16(float v) {
    if (!(v > 0.0F)) { // also NaN
        return 0;
    }
    // Doubles hold the product and the sum exactly.
    return v < 1.0F ? static_cast<std::uint16_t>(MAX_CODE * static_cast<double>(v) + 0.5) : CODES - 1;
}

void decodeCodes16(std::span<const std::uint16_t> codes, std::size_t channels, float* values) {
    decodeRow(decoder(), codes.data(), {reinterpret_cast<std::uint8_t*>(values), channels * sizeof(float)},
              codes.size() / channels, channels);
}

void encodeCodes16(std::span<const float> values, std::size_t channels, std::uint16_t* codes) {
    encodeRow(encoder(), {reinterpret_cast<const std::uint8_t*>(values.data()), channels * sizeof(float)}, codes,
              values.size() / channels, channels);
}

void decodeCodes16(const SampleView<const std::uint16_t>& source, const Image& target) {
    const Decoder& table = decoder();
    forEachRow(source.height, [&](std::size_t y) {
        decodeRow(table, source.row(y), {static_cast<std::uint8_t*>(target.getRowPtr(y)), target.getBytePixelStride()},
                  source.width, source.channels);
    });
}

void encodeCodes16(const Image& source, const SampleView<std::uint16_t>& target) {
    const Encoder& table = encoder();
    forEachRow(target.height, [&](std::size_t y) {
        encodeRow(table, {static_cast<const std::uint8_t*>(source.getRowPtr(y)), source.getBytePixelStride()},
                  target.row(y), target.width, target.channels);
    });
}

} // namespace zqx::img::kernels
