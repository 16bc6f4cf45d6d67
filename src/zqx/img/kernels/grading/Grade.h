// The grading operation on runs of linear light, and its application to images and lookup tables.
#pragma once

#include <cstddef>
#include <cstdint>

#include <zqx/img/ColorGrading.h>
#include <zqx/img/Image.h>

namespace zqx::img::kernels {

/// Grades every pixel of the source into the destination of the same width and height. Unknown formats do nothing.
void gradePixels(const Image& source, const Image& destination, const ColorGradingParamsInternal& params);

/// Fills size^3 entries of linear floats over a linear lattice.
void bakeLinearTable(std::size_t size, float* table, const ColorGradingParamsInternal& params);

/// Fills size^3 entries of encoded bytes over an encoded lattice.
void bakeEncodedTable(std::size_t size, std::uint8_t* table, const ColorGradingParamsInternal& params);

} // namespace zqx::img::kernels
