// 16 bits per channel: encoded like bytes, only finer, and worked on as linear floats. Both directions are tables: a
// power per sample would take longer than all of the grading.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include <zqx/img/Image.h>

#include "kernels/samples/SampleView.h"

namespace zqx::img::kernels {

/// Linear light of an encoded value, by the curve of the encoded bytes: (code / 65535)^2.2 rounded to the nearest
/// float.
float decode16(std::uint16_t code);

/// The code nearest to 65535 * v^(1 / 2.2) of v limited to [0, 1], for every float; NaN gives 0. The inverse of
/// decode16.
std::uint16_t encode16(float v);

/// The same without the curve, as alpha is stored: the code nearest to 65535 * v of v limited to [0, 1].
std::uint16_t encodeUnit16(float v);

/// Codes as linear floats, a row of interleaved samples. Alpha, the last of four channels, is linear in both.
/// @param values room for as many samples as there are codes
void decodeCodes16(std::span<const std::uint16_t> codes, std::size_t channels, float* values);

/// The way back. @param codes room for as many samples as there are values
void encodeCodes16(std::span<const float> values, std::size_t channels, std::uint16_t* codes);

/// The same of whole images.
/// @param target of the source's size, in the float format of as many channels
void decodeCodes16(const SampleView<const std::uint16_t>& source, const Image& target);

/// @param target of the source's size and as many channels
void encodeCodes16(const Image& source, const SampleView<std::uint16_t>& target);

} // namespace zqx::img::kernels
