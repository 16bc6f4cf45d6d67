// 16 bits per channel: encoded like bytes, only finer, and worked on as linear floats. Both directions are tables: a
// power per sample would take longer than all of the grading.
#pragma once

#include <cstdint>

#include <zqx/img/Image.h>

#include "SampleView.h"

namespace zqx::img::kernels {

/// Linear light of an encoded value, by the curve of the encoded bytes: (code / 65535)^2.2 rounded to the nearest
/// float.
float decode16(std::uint16_t code);

/// The code nearest to 65535 * v^(1 / 2.2) of v limited to [0, 1], for every float; NaN gives 0. The inverse of
/// decode16.
std::uint16_t encode16(float v);

/// The same without the curve, as alpha is stored: the code nearest to 65535 * v of v limited to [0, 1].
std::uint16_t encodeUnit16(float v);

/// Codes as linear floats. Alpha is linear in both.
/// @param target of the source's size, in the float format of as many channels
void decodeCodes16(const SampleView<const std::uint16_t>& source, const Image& target);

/// The way back. @param target of the source's size and as many channels
void encodeCodes16(const Image& source, const SampleView<std::uint16_t>& target);

} // namespace zqx::img::kernels
