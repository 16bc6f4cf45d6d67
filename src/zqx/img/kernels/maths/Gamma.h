// The gamma curve of every encoded format: a pure power, of whatever depth the codes are.
#pragma once

namespace zqx::img::kernels {

/// A stored value s, of which 1 is white, is the linear light s^GAMMA.
inline constexpr double GAMMA = 2.2;

/// The exponents in single precision, in which stored values of the 8-bit formats and of Color are defined.
inline constexpr float DECODING_EXPONENT = 2.2F;
inline constexpr float ENCODING_EXPONENT = 0.45454544F; // not the float nearest to 1 / 2.2, but the one below

} // namespace zqx::img::kernels
