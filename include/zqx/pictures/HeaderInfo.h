/// @file
/// What the header of a picture file tells, before any pixel is decoded.
#pragma once

#include <cstdint>

#include <zqx/pictures/Export.h>
#include <zqx/pictures/FileFormat.h>

namespace zqx::pictures {

/// What a picture file claims to hold. The numbers are those of the one picture that is decoded: the first frame of an
/// animation, the first page of a document. They are claims: the decoder has the last word.
/// @ingroup pictures
struct HeaderInfo {
    FileFormat format = FileFormat::UNKNOWN; ///< by content, or else by the name's extension
    std::uint32_t width = 0;                 ///< pixels in a row as stored; 0 where the header does not tell the size
    std::uint32_t height = 0;                ///< rows as stored; 0 where the header does not tell the size
    unsigned channels = 0;                   ///< 1 to 4, once colours are looked up in a palette; 0 where unknown
    unsigned bitsPerChannel = 0;             ///< as stored, at most 64; 0 where unknown
    bool severalPictures = false;            ///< the file holds pages, frames or layers that are not decoded

    /// True where the header tells how large the picture is.
    bool hasSize() const { return width > 0 && height > 0; }
    /// Pixels of the picture; 0 where the size is not known.
    std::uint64_t pixels() const { return std::uint64_t{width} * height; }
    /// Bytes of the decoded pixels, before they are converted; 0 where the size is not known.
    std::uint64_t decodedBytes() const { return pixels() * channels * ((bitsPerChannel + 7) / 8); }
};

} // namespace zqx::pictures
