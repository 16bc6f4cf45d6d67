#include "golden/Pictures.h"

#include <cstring>

#include "oracle/Pixels.h"
#include "unit/support/Fill.h"

namespace golden {

namespace {

constexpr std::uint8_t GUARD = 0xA5;

/// Single precision as bits: a float that is not a number might lose its payload on the way through a variable.
using FloatBits = std::uint32_t;

constexpr FloatBits CANONICAL_NAN = 0x7fc00000;

constexpr FloatBits CORNERS[] = {
    0x00000000, 0x80000000,             // zeros
    0x00000001, 0x80000001, 0x007fffff, // subnormal
    0x00800000, 0xb4000000,             // the smallest normal one; minus the offset of the contrast curve
    0x3f7fffff, 0x3f800000, 0x3f800001, // around 1
    0x3f28f5c3, 0x3ea8f5c3,             // the knees of highlights and shadows
    0x40200000, 0xbf800000, 0x49742400, 0xf149f2ca, 0x7f7fffff, // 2.5, -1, 1e6, -1e30, the largest
    0x7f800000, 0xff800000,                                     // infinities
    0x7fc00000, 0xffc00000, 0x7fc12345, 0xff923456, 0x7f800001, // quiet and signalling
};

bool isNan(FloatBits bits) {
    return (bits & 0x7fffffffU) > 0x7f800000U;
}

/// value / 65536, which is exact.
FloatBits bitsOfFraction(int value) {
    const float fraction = static_cast<float>(value) / 65536.0F;
    FloatBits bits;
    std::memcpy(&bits, &fraction, sizeof bits);
    return bits;
}

struct Place {
    std::size_t x;
    std::size_t y;
    std::size_t element;
};

FloatBits shadedBits(test::Random& random, const Place& at) {
    constexpr std::size_t PERIOD = 131072;
    const std::size_t phase = (601 * at.x + 1123 * at.y + 29001 * at.element) % PERIOD;
    const std::size_t wave = phase < PERIOD / 2 ? phase : PERIOD - 1 - phase;
    return bitsOfFraction(static_cast<int>(1311 + wave * 62 / 64 + random.below(700)));
}

FloatBits wildBits(test::Random& random) {
    switch (random.below(4)) {
    case 0: return CORNERS[random.below(std::size(CORNERS))];
    case 1: return static_cast<FloatBits>(random.next() >> 32U);
    default: return bitsOfFraction(static_cast<int>(random.below(131072)) - 32768);
    }
}

void fillFloat(std::uint8_t* element, Content content, test::Random& random, const Place& at) {
    const FloatBits bits = content == Content::SHADED ? shadedBits(random, at) : wildBits(random);
    std::memcpy(element, &bits, sizeof bits);
}

void fillByte(std::uint8_t* element, Content content, test::Random& random, const Place& at) {
    *element =
        content == Content::SHADED ? static_cast<std::uint8_t>(at.x + 37 * at.y + 91 * at.element) : random.byte();
}

void fill(const Image& image, Content content, std::uint64_t seed) {
    const oracle::FormatFacts& format = oracle::facts(image.getFormat());
    const auto fillElement = format.isFloat ? fillFloat : fillByte;
    test::Random random(seed);
    for (std::size_t y = 0; y < image.getHeight(); ++y) {
        for (std::size_t x = 0; x < image.getWidth(); ++x) {
            auto* pixel = static_cast<std::uint8_t*>(image.getPixelPtr(x, y));
            for (std::size_t element = 0; element < static_cast<std::size_t>(format.channels); ++element) {
                fillElement(pixel + element * oracle::elementSize(image.getFormat()), content, random, {x, y, element});
            }
        }
    }
}

void makeCanonical(std::uint8_t* floats, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        FloatBits bits;
        std::memcpy(&bits, floats + i * sizeof bits, sizeof bits);
        if (isNan(bits)) {
            std::memcpy(floats + i * sizeof bits, &CANONICAL_NAN, sizeof bits);
        }
    }
}

std::size_t rowBytes(const Layout& layout, Image::Format format) {
    return layout.width * (oracle::pixelSize(format) + layout.pixelGap) + layout.rowGap;
}

} // namespace

Picture::Picture(const Layout& layout, Image::Format format)
    : mMemory(layout.height * rowBytes(layout, format), GUARD),
      mImage(mMemory.data(), layout.width, layout.height, format, oracle::pixelSize(format) + layout.pixelGap,
             rowBytes(layout, format)) {
}

Picture::Picture(const Layout& layout, Image::Format format, Content content, std::uint64_t seed)
    : Picture(layout, format) {
    fill(mImage, content, seed);
}

std::vector<std::uint8_t> Picture::bytes(NanBits nanBits) const {
    std::vector<std::uint8_t> bytes = mMemory;
    if (nanBits == NanBits::CANONICAL && mImage.hasFloatFormat()) {
        const auto channels = static_cast<std::size_t>(oracle::facts(mImage.getFormat()).channels);
        for (std::size_t y = 0; y < mImage.getHeight(); ++y) {
            for (std::size_t x = 0; x < mImage.getWidth(); ++x) {
                makeCanonical(bytes.data() + y * mImage.getByteRowStride() + x * mImage.getBytePixelStride(), channels);
            }
        }
    }
    return bytes;
}

std::vector<std::uint8_t> pixelBytes(const Image& image, NanBits nanBits) {
    const std::size_t size = oracle::pixelSize(image.getFormat());
    std::vector<std::uint8_t> bytes;
    bytes.reserve(image.getWidth() * image.getHeight() * size);
    for (std::size_t y = 0; y < image.getHeight(); ++y) {
        for (std::size_t x = 0; x < image.getWidth(); ++x) {
            const auto* pixel = static_cast<const std::uint8_t*>(image.getPixelPtr(x, y));
            bytes.insert(bytes.end(), pixel, pixel + size);
        }
    }
    if (nanBits == NanBits::CANONICAL && image.hasFloatFormat()) {
        makeCanonical(bytes.data(), bytes.size() / sizeof(FloatBits));
    }
    return bytes;
}

std::vector<std::uint8_t> floatBytes(const std::vector<float>& floats, NanBits nanBits) {
    std::vector<std::uint8_t> bytes(floats.size() * sizeof(float));
    std::memcpy(bytes.data(), floats.data(), bytes.size());
    if (nanBits == NanBits::CANONICAL) {
        makeCanonical(bytes.data(), floats.size());
    }
    return bytes;
}

} // namespace golden
