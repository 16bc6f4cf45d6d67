// 16 bits per channel: encoded like bytes, only finer, and worked on as linear floats.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace zqx::pictures {

/// Linear light of an encoded value, by the curve of the encoded 8-bit formats: (code / 65535)^2.2 rounded to the
/// nearest float.
float decode16(std::uint16_t code);

/// The code nearest to 65535 * v^(1 / 2.2) of v limited to [0, 1], for every float; NaN gives 0. The inverse of
/// decode16.
std::uint16_t encode16(float v);

/// The same without the curve, as alpha is stored: the code nearest to 65535 * v of v limited to [0, 1].
std::uint16_t encodeUnit16(float v);

struct Depth16Tables;

/// Rows of 16-bit samples as linear floats with the same channels. Alpha, the last of four, is linear in both.
class Depth16Decoder {
public:
    /// Makes the tables with the first one.
    Depth16Decoder();

    /// @param values room for as many samples as there are codes
    /// @param channels of a pixel
    void operator()(std::span<const std::uint16_t> codes, float* values, std::size_t channels) const;

private:
    const Depth16Tables& mTables;
};

/// The way back.
class Depth16Encoder {
public:
    Depth16Encoder();

    /// @param codes room for as many samples as there are values
    void operator()(std::span<const float> values, std::uint16_t* codes, std::size_t channels) const;

private:
    const Depth16Tables& mTables;
};

} // namespace zqx::pictures
