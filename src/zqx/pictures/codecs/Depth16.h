// 16 bits per channel: encoded like bytes, only finer, and worked on as linear floats.
#pragma once

#include <cstdint>

#include "zqx/pictures/codecs/Form.h"

namespace zqx::pictures {

/// Linear light of an encoded value, by the curve of the encoded 8-bit formats: (code / 65535)^2.2 rounded to the
/// nearest float.
float decode16(std::uint16_t code);

/// The code nearest to 65535 * v^(1 / 2.2) of v limited to [0, 1], for every float; NaN gives 0. The inverse of
/// decode16.
std::uint16_t encode16(float v);

/// The same without the curve, as alpha is stored: the code nearest to 65535 * v of v limited to [0, 1].
std::uint16_t encodeUnit16(float v);

/// A bitmap of 16-bit samples (grey, RGB or RGBA) as linear floats with the same channels. Alpha is linear in both.
/// @throws std::bad_alloc
Bitmap decodeDepth16(FIBITMAP* bitmap);

/// The way back. @throws std::bad_alloc
Bitmap encodeDepth16(FIBITMAP* bitmap);

} // namespace zqx::pictures
