// The size of a picture from the first bytes of its file, without a decoder.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zqx::pictures {

struct PictureHeader {
    std::uint64_t width; ///< at most 2^32 - 1, as the height
    std::uint64_t height;
    unsigned channels;       ///< 1 to 4, once colours are looked up in a palette
    unsigned bitsPerChannel; ///< at most 64
};

/// What a file of a common format claims to be; nothing for a format or file that is not understood. Harmless on
/// hostile files, and not a check: the decoder has the last word.
std::optional<PictureHeader> readPictureHeader(const std::string& name);

} // namespace zqx::pictures
