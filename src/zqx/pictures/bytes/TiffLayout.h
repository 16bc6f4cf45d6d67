// What FreeImage keeps to itself of a TIFF file: how its samples are laid out.
#pragma once

#include <optional>

#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

/// The fields of the first picture's directory that say what a sample is.
struct TiffLayout {
    unsigned bitsPerSample = 1;
    unsigned samplesPerPixel = 1;
    bool floats = false;
    bool associatedAlpha = false; ///< colour is multiplied by alpha
};

/// Empty for a file whose directory cannot be found: its decoder will say more.
std::optional<TiffLayout> readTiffLayout(InputFile& file);

} // namespace zqx::pictures
