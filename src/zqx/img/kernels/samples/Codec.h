// Decoders and encoders: for each format a function that reads pixels into a run, and one that writes a run into
// pixels. Pixels are reached by the image's own stride, whatever lies between them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "kernels/samples/PixelFormat.h"
#include "kernels/samples/Run.h"

namespace zqx::img::kernels {

/// What a decoder makes of each of the 256 values of a colour byte. Alpha bytes are always divided by 255.
using ByteTable = std::array<float, 256>;

/// The values of colour bytes in linear light. For float formats, where no table has a say, any.
const ByteTable& linearLightTable(Format format);

/// Reads `length` pixels. Grey formats fill r alone, formats without alpha leave a as it is.
using DecodeRun = void (*)(const std::uint8_t* pixels, std::size_t stride, std::size_t length, const ByteTable& table,
                           Run& run);

/// Writes `length` pixels. Grey formats take r alone. Bytes are limited and truncated (see encodeGamma, encodeUnit).
using EncodeRun = void (*)(const Planes& planes, std::size_t length, std::uint8_t* pixels, std::size_t stride);

/// How pixels get to memory.
enum class Writing {
    CACHED,
    STREAMING, ///< by streaming stores, for pictures that would not stay in the cache: what they replace is not read
};

/// The better way to write a picture that is made from another.
Writing chooseWriting(const Image& source, const Image& target);

/// For a known format.
DecodeRun getDecoder(Format format);
EncodeRun getEncoder(Format format, Writing writing = Writing::CACHED);

/// Whether any byte belongs to both images.
bool shareMemory(const Image& a, const Image& b);

/// Reads pixels of one format as planes of the channels of another: as converting them to floats would give.
class RunReader {
public:
    /// Grey of colour is luma of linear light; of gamma-encoded colour it is the power 2.2 of the luma of the stored
    /// values. Grey fills all colour planes, and missing alpha is 1.
    RunReader(Format source, Format channels);

    /// The planes lie in the run, or several are one.
    Planes read(const std::uint8_t* pixels, std::size_t stride, std::size_t length, Run& run) const;

private:
    enum class Luma { NOT_NEEDED, OF_LINEAR_LIGHT, OF_STORED_VALUES };

    DecodeRun mDecode;
    const ByteTable* mTable;
    Luma mLuma = Luma::NOT_NEEDED;
    bool mIsGrey;
    bool mLacksAlpha;
};

/// Writes runs whose planes have the channels of a float format: as converting that format would.
class RunWriter {
public:
    /// @param channels GRAY32F, RGB32F or RGBA32F
    RunWriter(Format channels, Format target, Writing writing);

    /// Leaves the planes changed.
    void write(Run& run, std::size_t length, std::uint8_t* pixels, std::size_t stride) const;

private:
    EncodeRun mEncode;
    bool mNeedsLuma;
    bool mIsGrey;
    bool mLacksAlpha;
};

/// Puts the luma of linear light in place of the red plane.
void lumaIntoRed(Run& run, std::size_t length);

} // namespace zqx::img::kernels
