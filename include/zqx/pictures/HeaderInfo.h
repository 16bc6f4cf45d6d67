/// @file
/// What the header of a picture file says, before any pixel is decoded.
#pragma once

#include <cstdint>

#include <zqx/pictures/Export.h>
#include <zqx/pictures/FileFormat.h>

namespace zqx::pictures {

/// What a picture file claims to contain. The numbers are those of the picture that readPicture() would decode: the
/// first frame of an animation, the first page of a document. They are not verified; the decoder has the last word.
/// @ingroup pictures
struct HeaderInfo {
    FileFormat format = FileFormat::UNKNOWN; ///< by content, or by the extension if the content is not recognised
    std::uint32_t width = 0;                 ///< of the stored picture in pixels; 0 if the header does not say
    std::uint32_t height = 0;                ///< of the stored picture in pixels; 0 if the header does not say
    unsigned channels = 0;                   ///< 1 to 4, after palette lookup; 0 if unknown
    unsigned bitsPerChannel = 0;             ///< as stored, at most 64; 0 if unknown
    bool severalPictures = false; ///< whether there are further pages, frames or layers, which are not decoded

    /// Whether the header gives the size of the picture.
    bool hasSize() const { return width > 0 && height > 0; }
    /// The number of pixels; 0 if the size is unknown.
    std::uint64_t pixels() const { return std::uint64_t{width} * height; }
    /// The number of bytes of the decoded pixels, before any conversion; 0 if the size is unknown.
    std::uint64_t decodedBytes() const { return pixels() * channels * ((bitsPerChannel + 7) / 8); }
};

} // namespace zqx::pictures
