// The one table that says what the eleven pixel formats are. Nothing else repeats it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include <zqx/img/Image.h>

namespace zqx::img::kernels {

using Format = Image::Format;

/// How the elements of a pixel hold their values. Alpha bytes are linear in both byte encodings.
enum class Encoding {
    LINEAR_BYTE,
    GAMMA_BYTE,
    FLOAT,
};

/// Alpha bytes are linear whatever the colour's encoding.
constexpr Encoding alphaEncoding(Encoding color) {
    return color == Encoding::FLOAT ? Encoding::FLOAT : Encoding::LINEAR_BYTE;
}

/// Element indices within a pixel, or NONE.
inline constexpr std::size_t NONE = ~std::size_t{0};

struct PixelFormat {
    Encoding encoding;
    std::size_t red; ///< also the one channel of a grey format
    std::size_t green;
    std::size_t blue;
    std::size_t alpha;

    constexpr bool isGrey() const { return green == NONE; }
    constexpr bool hasAlpha() const { return alpha != NONE; }
    constexpr bool isFloat() const { return encoding == Encoding::FLOAT; }
    constexpr std::size_t elementCount() const { return (isGrey() ? 1U : 3U) + (hasAlpha() ? 1U : 0U); }
    constexpr std::size_t elementSize() const { return isFloat() ? sizeof(float) : 1U; }
    constexpr std::size_t byteSize() const { return elementCount() * elementSize(); }
};

/// Indexed by Image::Format.
inline constexpr std::array<PixelFormat, 11> PIXEL_FORMATS = {{
    {Encoding::LINEAR_BYTE, 0, NONE, NONE, NONE}, // GRAY8
    {Encoding::GAMMA_BYTE, 0, NONE, NONE, NONE},  // SGRAY8
    {Encoding::FLOAT, 0, NONE, NONE, NONE},       // GRAY32F
    {Encoding::LINEAR_BYTE, 0, 1, 2, NONE},       // RGB8
    {Encoding::GAMMA_BYTE, 0, 1, 2, NONE},        // SRGB8
    {Encoding::FLOAT, 0, 1, 2, NONE},             // RGB32F
    {Encoding::GAMMA_BYTE, 2, 1, 0, NONE},        // SBGR8
    {Encoding::LINEAR_BYTE, 0, 1, 2, 3},          // RGBA8
    {Encoding::GAMMA_BYTE, 0, 1, 2, 3},           // SRGBA8
    {Encoding::FLOAT, 0, 1, 2, 3},                // RGBA32F
    {Encoding::GAMMA_BYTE, 2, 1, 0, 3},           // SBGRA8
}};

inline constexpr std::size_t FORMAT_COUNT = PIXEL_FORMATS.size();

constexpr bool isKnown(Format format) {
    return static_cast<std::size_t>(format) < FORMAT_COUNT;
}

constexpr const PixelFormat& pixelFormat(Format known) {
    return PIXEL_FORMATS[static_cast<std::size_t>(known)];
}

/// Bytes of one pixel, 0 for an unknown format.
constexpr std::size_t pixelByteSize(Format format) {
    return isKnown(format) ? pixelFormat(format).byteSize() : 0;
}

} // namespace zqx::img::kernels
