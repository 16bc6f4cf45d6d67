// The colours of 3D lookup tables for pictures as they are stored, in floats throughout: tables of bytes would band in
// shadows. Between the two functions they are graded, as any image of RGB32F.
#pragma once

#include <cstddef>
#include <span>

namespace zqx::img::kernels {

/// Fills size^3 entries of three floats with the linear light of gamma-encoded colours (r, g, b) / (size - 1). Red
/// varies fastest, then green, then blue.
/// @param size points along each axis, at least 2
/// @param table 3 * size^3 floats
/// @throws std::bad_alloc
void fillEncodedLattice(std::size_t size, std::span<float> table);

/// Encodes linear light, limited to [0, 1], into stored values of 0 to 1. NaN stays.
void encodeInPlace(std::span<float> values);

} // namespace zqx::img::kernels
