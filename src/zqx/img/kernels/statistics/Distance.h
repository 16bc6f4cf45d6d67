// How far two images are from each other.
#pragma once

#include <cstddef>
#include <cstdint>

#include <zqx/img/Image.h>

namespace zqx::img::kernels {

/// The numbers that are compared.
enum class Scale {
    CODES_8,  ///< of encoded bytes, 255 for white
    CODES_16, ///< of 65535 for white: floats as they are encoded, bytes 257 times themselves
    LIGHT,    ///< linear light, 1 for white; alpha from 0 to 1
};

/// The number that stands for 1.
double white(Scale scale);

/// What a comparison finds. Differences are on the scale; of several largest ones the first row by row is told.
///
/// Two values of a kind are equal, also two that are no numbers; a number and none are infinitely far from each other.
struct Distances {
    double largest = 0.0;
    std::size_t x = 0;
    std::size_t y = 0;
    std::size_t channel = 0; ///< red or grey 0, green 1, blue 2, alpha 3
    double sum = 0.0;        ///< over all channels of all pixels, from row 0 on
    double sumOfSquares = 0.0;
    std::uint64_t differingPixels = 0;
};

/// Compares images of one size and with the same channels: encoded bytes or floats, in any order of bytes. On CODES_8
/// both are of bytes.
/// @throws std::bad_alloc
Distances measureDistances(const Image& a, const Image& b, Scale scale);

/// Paints the differences so much brighter that the largest one is white, and any at all is to be seen. Differences of
/// alpha brighten all channels.
/// @param largest as measured
/// @param target of the same size: SGRAY8 for grey images, three bytes in any order for others
/// @throws std::bad_alloc
void paintDistances(const Image& a, const Image& b, Scale scale, double largest, const Image& target);

} // namespace zqx::img::kernels
