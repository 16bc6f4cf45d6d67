// The pixel formats and the arithmetic of one stored value, written as plainly as possible.
// Shares nothing with the library: formats are known by their number, pictures by an address and two strides.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstring>
#include <vector>

namespace oracle {

struct FormatFacts {
    const char* name;
    int channels;
    bool isFloat;
    bool isEncoded;
    bool isBgr;
};

constexpr unsigned FORMAT_COUNT = 11;

inline const FormatFacts& facts(unsigned format) {
    static const FormatFacts TABLE[FORMAT_COUNT] = {
        {"GRAY8", 1, false, false, false},  {"SGRAY8", 1, false, true, false}, {"GRAY32F", 1, true, false, false},
        {"RGB8", 3, false, false, false},   {"SRGB8", 3, false, true, false},  {"RGB32F", 3, true, false, false},
        {"SBGR8", 3, false, true, true},    {"RGBA8", 4, false, false, false}, {"SRGBA8", 4, false, true, false},
        {"RGBA32F", 4, true, false, false}, {"SBGRA8", 4, false, true, true},
    };
    return TABLE[format];
}

inline bool isKnown(unsigned format) {
    return format < FORMAT_COUNT;
}

inline std::size_t elementSize(unsigned format) {
    return facts(format).isFloat ? 4 : 1;
}

inline std::size_t pixelSize(unsigned format) {
    return isKnown(format) ? static_cast<std::size_t>(facts(format).channels) * elementSize(format) : 0;
}

/// A picture in somebody's memory.
struct Surface {
    unsigned format;
    unsigned char* data;
    std::size_t width;
    std::size_t height;
    std::size_t pixelStride;
    std::size_t rowStride;

    unsigned char* at(std::size_t x, std::size_t y) const { return data + x * pixelStride + y * rowStride; }
};

/// A packed picture with memory of its own.
struct Picture {
    Picture(std::size_t width, std::size_t height, unsigned format)
        : memory(width * height * pixelSize(format) + 16), surface{
                                                               format, memory.data(),     width,
                                                               height, pixelSize(format), width * pixelSize(format)} {}
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    std::vector<unsigned char> memory;
    Surface surface;
};

/// The four channels of a pixel; a grey pixel has its one value in r, g and b.
struct Values {
    float r;
    float g;
    float b;
    float a;
};

inline float loadFloat(const unsigned char* address) {
    float value;
    std::memcpy(&value, address, sizeof value);
    return value;
}

inline void storeFloat(unsigned char* address, float value) {
    std::memcpy(address, &value, sizeof value);
}

/// Pure power 2.2, rounded once from double precision.
inline float decodePower(unsigned char byte) {
    static const std::vector<float> TABLE = [] {
        std::vector<float> table(256);
        for (int i = 0; i < 256; ++i) {
            table[i] = static_cast<float>(std::pow(i / 255.0, 2.2));
        }
        return table;
    }();
    return TABLE[byte];
}

/// Limits to [0, 1] and lets NaN pass.
inline float limit(float value) {
    if (value > 1.0F) {
        return 1.0F;
    }
    return value < 0.0F ? 0.0F : value;
}

inline unsigned char truncate(float value) {
    return std::isnan(value) ? 0 : static_cast<unsigned char>(value);
}

inline unsigned char encodeLinear(float value) {
    return truncate(255.0F * limit(value));
}

inline unsigned char encodePower(float value) {
    return truncate(255.0F * powf(limit(value), 0.45454544F));
}

inline float luma(const Values& c) {
    return 0.2126F * c.r + 0.7152F * c.g + 0.0722F * c.b;
}

/// Offset of a logical channel (0 red, 1 green, 2 blue, 3 alpha) inside a pixel, in elements.
inline int channelOffset(unsigned format, int channel) {
    return facts(format).isBgr && channel < 3 ? 2 - channel : channel;
}

/// One channel as it is stored: bytes on the 0..1 scale, floats as they are.
inline float storedChannel(const Surface& s, std::size_t x, std::size_t y, int channel) {
    const unsigned char* pixel = s.at(x, y);
    const int offset = channelOffset(s.format, channel);
    return facts(s.format).isFloat ? loadFloat(pixel + 4 * offset) : static_cast<float>(pixel[offset]) / 255.0F;
}

/// One channel in linear light.
inline float linearChannel(const Surface& s, std::size_t x, std::size_t y, int channel) {
    if (facts(s.format).isEncoded && channel < 3) {
        return decodePower(s.at(x, y)[channelOffset(s.format, channel)]);
    }
    return storedChannel(s, x, y, channel);
}

inline void writeChannel(const Surface& s, std::size_t x, std::size_t y, int channel, float linear) {
    unsigned char* pixel = s.at(x, y);
    const int offset = channelOffset(s.format, channel);
    if (facts(s.format).isFloat) {
        storeFloat(pixel + 4 * offset, linear);
    } else {
        pixel[offset] = facts(s.format).isEncoded && channel < 3 ? encodePower(linear) : encodeLinear(linear);
    }
}

template <typename ReadChannel>
Values gather(const Surface& s, std::size_t x, std::size_t y, ReadChannel read) {
    const int channels = facts(s.format).channels;
    const float first = read(s, x, y, 0);
    if (channels == 1) {
        return {first, first, first, 1.0F};
    }
    return {first, read(s, x, y, 1), read(s, x, y, 2), channels == 4 ? read(s, x, y, 3) : 1.0F};
}

inline Values readStored(const Surface& s, std::size_t x, std::size_t y) {
    return gather(s, x, y, storedChannel);
}

inline Values readLinear(const Surface& s, std::size_t x, std::size_t y) {
    return gather(s, x, y, linearChannel);
}

/// Writes linear values; a grey pixel takes r.
inline void writeLinear(const Surface& s, std::size_t x, std::size_t y, const Values& values) {
    const float channels[4] = {values.r, values.g, values.b, values.a};
    for (int c = 0; c < facts(s.format).channels; ++c) {
        writeChannel(s, x, y, c, channels[c]);
    }
}

} // namespace oracle
