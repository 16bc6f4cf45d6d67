// Decoders and encoders: one template over the format reads pixels into a run, one writes a run into pixels.
// Pixels are reached by the image's own stride, whatever lies between them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "GammaTables.h"
#include "PixelFormat.h"
#include "Run.h"

namespace zqx::img::kernels {

/// What a decoder makes of gamma-encoded colour bytes.
enum class Reading {
    LINEAR_LIGHT, ///< decoded by the gamma table
    AS_STORED,    ///< the stored value, byte / 255
};

template <Encoding E, Reading R>
float decodeElement(const std::uint8_t* pixel, std::size_t index) {
    if constexpr (E == Encoding::FLOAT) {
        float value; // pixels of a view need not be aligned
        std::memcpy(&value, pixel + index * sizeof(float), sizeof value);
        return value;
    } else if constexpr (E == Encoding::GAMMA_BYTE && R == Reading::LINEAR_LIGHT) {
        return GAMMA_DECODE[pixel[index]];
    } else {
        return UNIT_DECODE[pixel[index]];
    }
}

template <Encoding E>
void encodeElement(float value, std::uint8_t* pixel, std::size_t index) {
    if constexpr (E == Encoding::FLOAT) {
        std::memcpy(pixel + index * sizeof(float), &value, sizeof value);
    } else if constexpr (E == Encoding::GAMMA_BYTE) {
        pixel[index] = encodeGamma(value);
    } else {
        pixel[index] = encodeUnit(value);
    }
}

/// Alpha bytes are linear whatever the colour's encoding.
constexpr Encoding alphaEncoding(Encoding color) {
    return color == Encoding::FLOAT ? Encoding::FLOAT : Encoding::LINEAR_BYTE;
}

/// Reads `length` pixels. Fills r alone for grey formats; fills a with 1 where the format has no alpha and `WithAlpha`
/// asks for it.
template <Format F, Reading R, bool WithAlpha>
void decodeRun(const std::uint8_t* pixels, std::size_t stride, std::size_t length, Run& run) {
    constexpr PixelFormat FORMAT = pixelFormat(F);
    constexpr Encoding E = FORMAT.encoding;
    for (std::size_t i = 0; i < length; ++i, pixels += stride) {
        run.r[i] = decodeElement<E, R>(pixels, FORMAT.red);
        if constexpr (!FORMAT.isGrey()) {
            run.g[i] = decodeElement<E, R>(pixels, FORMAT.green);
            run.b[i] = decodeElement<E, R>(pixels, FORMAT.blue);
        }
        if constexpr (WithAlpha && FORMAT.hasAlpha()) {
            run.a[i] = decodeElement<alphaEncoding(E), R>(pixels, FORMAT.alpha);
        } else if constexpr (WithAlpha) {
            run.a[i] = 1.0F;
        }
    }
}

/// Planes that an encoder reads; several may be the same (grey written into colour).
struct Planes {
    const float* r;
    const float* g;
    const float* b;
    const float* a;
};

/// Writes `length` pixels. Grey formats take r alone.
template <Format F>
void encodeRun(const Planes& planes, std::size_t length, std::uint8_t* pixels, std::size_t stride) {
    constexpr PixelFormat FORMAT = pixelFormat(F);
    constexpr Encoding E = FORMAT.encoding;
    for (std::size_t i = 0; i < length; ++i, pixels += stride) {
        encodeElement<E>(planes.r[i], pixels, FORMAT.red);
        if constexpr (!FORMAT.isGrey()) {
            encodeElement<E>(planes.g[i], pixels, FORMAT.green);
            encodeElement<E>(planes.b[i], pixels, FORMAT.blue);
        }
        if constexpr (FORMAT.hasAlpha()) {
            encodeElement<alphaEncoding(E)>(planes.a[i], pixels, FORMAT.alpha);
        }
    }
}

} // namespace zqx::img::kernels
