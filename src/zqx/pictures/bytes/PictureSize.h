// How large a picture is, from the header of its file.
#pragma once

#include <cstdint>
#include <optional>

#include "zqx/pictures/FileFormat.h"

namespace zqx::pictures {

class InputFile;

struct PictureSize {
    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t bitsPerPixel; ///< decoded, before any conversion

    std::uint64_t pixels() const { return std::uint64_t{width} * height; }
    std::uint64_t bytes() const { return pixels() * ((bitsPerPixel + 7) / 8); } // pixels of one bit count as bytes
};

/// The size that a file's header tells; nothing where it tells none, or only together with the pixels.
/// @throws Error when the header brings its decoder down
std::optional<PictureSize> sizeFromHeader(InputFile& file, FileFormat format);

} // namespace zqx::pictures
