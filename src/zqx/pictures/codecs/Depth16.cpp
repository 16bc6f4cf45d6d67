// Both directions are table look-ups: a power per sample would take longer than all of the grading.
#include "zqx/pictures/codecs/Depth16.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <vector>

#include "kernels/Rows.h"
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

struct Tables {
    Tables() {
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

const Tables& tables() {
    static const Tables instance; // made with the first picture that needs them
    return instance;
}

std::uint16_t encode(const Tables& tables, float v) {
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

Bitmap allocate(FREE_IMAGE_TYPE type, FIBITMAP* like) {
    Bitmap bitmap(FreeImage_AllocateT(type, static_cast<int>(FreeImage_GetWidth(like)),
                                      static_cast<int>(FreeImage_GetHeight(like))));
    if (!bitmap) {
        throw std::bad_alloc();
    }
    return bitmap;
}

/// Converts all samples of a bitmap into another one's. @param color, alpha functions of a sample
template <typename From, typename To, typename ColorFunction, typename AlphaFunction>
void convertSamples(FIBITMAP* from, FIBITMAP* to, const ColorFunction& color, const AlphaFunction& alpha) {
    const std::size_t samples = FreeImage_GetLine(from) / sizeof(From);
    const bool withAlpha = FreeImage_GetBPP(from) == 8 * sizeof(From) * RGBA;
    img::kernels::forEachRow(FreeImage_GetHeight(from), [=](std::size_t y) {
        const auto* in = reinterpret_cast<const From*>(FreeImage_GetScanLine(from, static_cast<int>(y)));
        auto* out = reinterpret_cast<To*>(FreeImage_GetScanLine(to, static_cast<int>(y)));
        for (std::size_t i = 0; i < samples; ++i) {
            out[i] = color(in[i]);
        }
        for (std::size_t i = RGBA - 1; withAlpha && i < samples; i += RGBA) {
            out[i] = alpha(in[i]);
        }
    });
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

Bitmap decodeDepth16(FIBITMAP* bitmap) {
    const FREE_IMAGE_TYPE type = FreeImage_GetImageType(bitmap);
    Bitmap result = allocate(type == FIT_UINT16 ? FIT_FLOAT : type == FIT_RGB16 ? FIT_RGBF : FIT_RGBAF, bitmap);
    convertSamples<WORD, float>(
        bitmap, result.get(), [&decoded = tables().decoded](WORD code) { return decoded[code]; },
        [](WORD code) { return static_cast<float>(code) / float{MAX_CODE}; });
    return result;
}

Bitmap encodeDepth16(FIBITMAP* bitmap) {
    const FREE_IMAGE_TYPE type = FreeImage_GetImageType(bitmap);
    Bitmap result = allocate(type == FIT_FLOAT ? FIT_UINT16 : type == FIT_RGBF ? FIT_RGB16 : FIT_RGBA16, bitmap);
    convertSamples<float, WORD>(
        bitmap, result.get(), [&all = tables()](float v) { return encode(all, v); }, encodeUnit16);
    return result;
}

} // namespace zqx::pictures
