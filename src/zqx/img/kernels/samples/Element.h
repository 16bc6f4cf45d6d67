// Single elements of pixels: for operations that change a few bytes in place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "kernels/maths/GammaTables.h"
#include "kernels/samples/PixelFormat.h"

namespace zqx::img::kernels {

/// The linear value of an element.
template <Encoding E>
float decodeElement(const std::uint8_t* pixel, std::size_t index) {
    if constexpr (E == Encoding::FLOAT) {
        float value; // pixels of a view need not be aligned
        std::memcpy(&value, pixel + index * sizeof(float), sizeof value);
        return value;
    } else {
        return E == Encoding::GAMMA_BYTE ? GAMMA_DECODE[pixel[index]] : UNIT_DECODE[pixel[index]];
    }
}

template <Encoding E>
void encodeElement(float value, std::uint8_t* pixel, std::size_t index) {
    if constexpr (E == Encoding::FLOAT) {
        std::memcpy(pixel + index * sizeof(float), &value, sizeof value);
    } else {
        pixel[index] = E == Encoding::GAMMA_BYTE ? encodeGamma(value) : encodeUnit(value);
    }
}

} // namespace zqx::img::kernels
