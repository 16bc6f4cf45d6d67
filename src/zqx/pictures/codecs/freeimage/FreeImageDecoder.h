// Picture files through FreeImage's decoders.
#pragma once

#include <optional>
#include <string>

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/Limits.h"
#include "zqx/pictures/Picture.h"
#include "zqx/pictures/bytes/Probe.h"
#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

/// The format by content, or else by the extension. @throws Error when neither is known
FileFormat detectFormat(InputFile& file);

/// The header of a file, also of the formats whose headers only FreeImage reads.
/// @throws Error when it brings its decoder down
Header readHeader(InputFile& file, FileFormat format);

/// Decodes a file as its pixels are stored, not turned upright, in the working layout that keeps most of them, with a
/// profile, comments and resolution. Warns of what is lost.
/// @throws Error naming the file
Picture decodeByFreeImage(InputFile& file, const Header& header, const Limits& limits);

/// What a file says of its pixels, in words where people want it.
struct PixelDescription {
    unsigned width = 0;
    unsigned height = 0;
    unsigned bitsPerPixel = 0;
    std::string samples; ///< "32-bit float, three channels"
    std::string color;   ///< "RGB with alpha"
    bool transparent = false;
    Metadata metadata; ///< as far as the decoder reads it
};

/// Reads the header of a file, or decodes it where that cannot be read alone. @throws Error naming the file
PixelDescription describeByFreeImage(InputFile& file, FileFormat format);

/// From now on decoders' faults end this process. For one whose death is told by another.
void dieOfFaults();

/// Of the library that does this.
std::string freeImageVersion();

} // namespace zqx::pictures
