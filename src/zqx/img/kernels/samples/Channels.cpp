// Every byte operation that depends on one byte alone is a 256-entry table, evaluated by the compiler.
#include "kernels/samples/Channels.h"

#include <cstring>

#include "kernels/Rows.h"
#include "kernels/samples/Element.h"

namespace zqx::img::kernels {

namespace {

using ByteTable = std::array<std::uint8_t, 256>;

constexpr ByteTable invertedUnits() {
    ByteTable table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        table[i] = encodeUnit(1.0F - UNIT_DECODE[i]);
    }
    return table;
}

constexpr ByteTable invertedGamma() {
    ByteTable table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        table[i] = encodeGamma(1.0F - GAMMA_DECODE[i]);
    }
    return table;
}

constexpr ByteTable INVERTED_UNIT = invertedUnits();
constexpr ByteTable INVERTED_GAMMA = invertedGamma();

template <typename PixelOperation>
void forEachPixel(const Image& image, const PixelOperation& operation) {
    forEachRow(image.getHeight(), [&](std::size_t y) {
        auto* pixel = static_cast<std::uint8_t*>(image.getRowPtr(y));
        for (std::size_t x = 0; x < image.getWidth(); ++x, pixel += image.getBytePixelStride()) {
            operation(pixel);
        }
    });
}

void invertFloat(const Image& image, std::size_t index) {
    forEachPixel(image, [=](std::uint8_t* pixel) {
        encodeElement<Encoding::FLOAT>(1.0F - decodeElement<Encoding::FLOAT>(pixel, index), pixel, index);
    });
}

void invertByte(const Image& image, std::size_t index, const ByteTable& table) {
    forEachPixel(image, [&table, index](std::uint8_t* pixel) { pixel[index] = table[pixel[index]]; });
}

void invertElement(const Image& image, std::size_t index, Encoding encoding) {
    switch (encoding) {
    case Encoding::FLOAT: invertFloat(image, index); break;
    case Encoding::GAMMA_BYTE: invertByte(image, index, INVERTED_GAMMA); break;
    case Encoding::LINEAR_BYTE: invertByte(image, index, INVERTED_UNIT); break;
    }
}

/// Alpha up to this leaves a pixel as it is when colour is divided by it.
constexpr float TRANSPARENT_ALPHA = 0.0001F;

void divideFloats(std::uint8_t* pixel) {
    float rgba[4];
    std::memcpy(rgba, pixel, sizeof rgba);
    if (rgba[3] > TRANSPARENT_ALPHA) {
        for (std::size_t i = 0; i < 3; ++i) {
            rgba[i] /= rgba[3];
        }
        std::memcpy(pixel, rgba, sizeof rgba);
    }
}

void multiplyFloats(std::uint8_t* pixel) {
    float rgba[4];
    std::memcpy(rgba, pixel, sizeof rgba);
    for (std::size_t i = 0; i < 3; ++i) {
        rgba[i] *= rgba[3];
    }
    std::memcpy(pixel, rgba, sizeof rgba);
}

void divideBytes(std::uint8_t* pixel) {
    const float alpha = UNIT_DECODE[pixel[3]];
    if (alpha > TRANSPARENT_ALPHA) {
        for (std::size_t i = 0; i < 3; ++i) {
            pixel[i] = encodeUnit(UNIT_DECODE[pixel[i]] / alpha);
        }
    }
}

template <Encoding E>
void multiplyBytes(std::uint8_t* pixel) {
    const float alpha = UNIT_DECODE[pixel[3]];
    for (std::size_t i = 0; i < 3; ++i) {
        encodeElement<E>(decodeElement<E>(pixel, i) * alpha, pixel, i);
    }
}

bool hasAlpha(const Image& image) {
    return isKnown(image.getFormat()) && pixelFormat(image.getFormat()).hasAlpha();
}

} // namespace

void invertChannels(const Image& image, Channel mask) {
    if (!isKnown(image.getFormat())) {
        return;
    }
    const PixelFormat& format = pixelFormat(image.getFormat());
    const auto invertIfSet = [&](Channel channel, std::size_t index, Encoding encoding) {
        if ((mask & channel) != 0 && index != NONE) {
            invertElement(image, index, encoding);
        }
    };
    invertIfSet(Red, format.red, format.encoding);
    invertIfSet(Green, format.green, format.encoding);
    invertIfSet(Blue, format.blue, format.encoding);
    invertIfSet(Alpha, format.alpha, alphaEncoding(format.encoding));
}

void divideByAlpha(const Image& image) {
    if (!hasAlpha(image)) {
        return;
    }
    if (image.hasFloatFormat()) {
        forEachPixel(image, divideFloats);
    } else {
        forEachPixel(image, divideBytes); // as stored, whatever the encoding
    }
}

void multiplyByAlpha(const Image& image) {
    if (!hasAlpha(image)) {
        return;
    }
    switch (pixelFormat(image.getFormat()).encoding) {
    case Encoding::FLOAT: forEachPixel(image, multiplyFloats); break;
    case Encoding::GAMMA_BYTE: forEachPixel(image, multiplyBytes<Encoding::GAMMA_BYTE>); break;
    case Encoding::LINEAR_BYTE: forEachPixel(image, multiplyBytes<Encoding::LINEAR_BYTE>); break;
    }
}

void copyColor(const Image& src, const Image& target) {
    if (src.getDataPtr() == nullptr || target.getDataPtr() == nullptr) {
        return;
    }
    forEachRow(src.getHeight(), [&](std::size_t y) {
        for (std::size_t x = 0; x < src.getWidth(); ++x) {
            std::memcpy(target.getPixelPtr(x, y), src.getPixelPtr(x, y), 3 * sizeof(float));
        }
    });
}

} // namespace zqx::img::kernels
