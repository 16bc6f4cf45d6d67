// Both directions are table look-ups: a power per sample would take longer than all of the grading.
#include "zqx/pictures/codecs/Depth16.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "kernels/ScalarMaths.h"

namespace zqx::pictures {

namespace {

constexpr unsigned MAX_CODE = 65535;
constexpr double GAMMA = 2.2;   // as the encoded 8-bit formats
constexpr std::size_t RGBA = 4; // channels, alpha last

/// Positive floats order like their bits, so the upper 16 bits (exponent and 7 mantissa bits) name buckets in which the
/// encoding curve is nearly straight: its chord falls short of it by less than an eighth of a code.
constexpr int BUCKET_SHIFT = 16;
constexpr float BUCKET_FRACTION = 1.0F / (1U << BUCKET_SHIFT);
/// Taken off the chords, so that their rounding to floats never puts them above the curve.
constexpr double CHORD_MARGIN = 1.0 / 64.0;

/// The smallest float that is not less.
float roundUp(double value) {
    const auto nearest = static_cast<float>(value);
    return static_cast<double>(nearest) < value ? std::nextafter(nearest, 2.0F) : nearest;
}

} // namespace

struct Depth16Tables {
    Depth16Tables() {
        for (unsigned code = 0; code <= MAX_CODE; ++code) {
            decoded[code] = static_cast<float>(img::kernels::maths::pow(code / double{MAX_CODE}, GAMMA));
            threshold[code] = code == 0 ? 0.0F : roundUp(img::kernels::maths::pow((code - 0.5) / MAX_CODE, GAMMA));
        }
        threshold[MAX_CODE + 1] = std::numeric_limits<float>::infinity();
        firstBucket = std::bit_cast<std::uint32_t>(threshold[1]) >> BUCKET_SHIFT;
        const std::uint32_t end = std::bit_cast<std::uint32_t>(1.0F) >> BUCKET_SHIFT;
        for (std::uint32_t bucket = firstBucket; bucket <= end; ++bucket) {
            const double first = std::bit_cast<float>(bucket << BUCKET_SHIFT);
            chordEnd.push_back(
                static_cast<float>(MAX_CODE * img::kernels::maths::pow(first, 1.0 / GAMMA) + (0.5 - CHORD_MARGIN)));
        }
    }

    std::array<float, MAX_CODE + 1> decoded;
    std::array<float, MAX_CODE + 2> threshold; ///< the smallest float of each code, and a sentinel
    std::vector<float> chordEnd;               ///< the code, plus a half for rounding, where each bucket begins
    std::uint32_t firstBucket;
};

namespace {

const Depth16Tables& tables() {
    static const Depth16Tables instance; // made with the first picture that needs them
    return instance;
}

std::uint16_t encode(const Depth16Tables& tables, float v) {
    if (!(v >= tables.threshold[1])) { // also NaN
        return 0;
    }
    if (v >= 1.0F) {
        return MAX_CODE;
    }
    const auto bits = std::bit_cast<std::uint32_t>(v);
    const float* ends = &tables.chordEnd[(bits >> BUCKET_SHIFT) - tables.firstBucket];
    const float within = static_cast<float>(bits & ((1U << BUCKET_SHIFT) - 1)) * BUCKET_FRACTION;
    const auto guess = static_cast<std::uint32_t>(ends[0] + (ends[1] - ends[0]) * within); // right, or one too small
    return static_cast<std::uint16_t>(guess + (v >= tables.threshold[guess + 1] ? 1 : 0));
}

} // namespace

float decode16(std::uint16_t code) {
    return tables().decoded[code];
}

std::uint16_t encode16(float v) {
    return encode(tables(), v);
}

std::uint16_t encodeUnit16(float v) {
    if (!(v > 0.0F)) { // also NaN
        return 0;
    }
    // Doubles hold the product and the sum exactly.
    return v < 1.0F ? static_cast<std::uint16_t>(double{MAX_CODE} * static_cast<double>(v) + 0.5) : MAX_CODE;
}

Depth16Decoder::Depth16Decoder() : mTables(tables()) {
}

void Depth16Decoder::operator()(std::span<const std::uint16_t> codes, float* values, std::size_t channels) const {
    for (std::size_t i = 0; i < codes.size(); ++i) {
        values[i] = mTables.decoded[codes[i]];
    }
    for (std::size_t i = RGBA - 1; channels == RGBA && i < codes.size(); i += RGBA) {
        values[i] = static_cast<float>(codes[i]) / float{MAX_CODE};
    }
}

Depth16Encoder::Depth16Encoder() : mTables(tables()) {
}

void Depth16Encoder::operator()(std::span<const float> values, std::uint16_t* codes, std::size_t channels) const {
    for (std::size_t i = 0; i < values.size(); ++i) {
        codes[i] = encode(mTables, values[i]);
    }
    for (std::size_t i = RGBA - 1; channels == RGBA && i < values.size(); i += RGBA) {
        codes[i] = encodeUnit16(values[i]);
    }
}

} // namespace zqx::pictures
