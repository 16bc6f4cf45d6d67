// Decoding of picture files by FreeImage.
#pragma once

#include <optional>
#include <string>

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/Limits.h"
#include "zqx/pictures/Picture.h"
#include "zqx/pictures/bytes/Probe.h"
#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

/// The format by content, or by the extension if the content is not recognised. @throws Error if neither is known
FileFormat detectFormat(InputFile& file);

/// Reads the header of a file, also in formats whose headers only FreeImage can read.
/// @throws Error if the file crashes the decoder
Header readHeader(InputFile& file, FileFormat format);

/// Decodes a file, not turned upright, to the working layout that preserves most of it, with colour profile, comments
/// and resolution. Warns about what is lost.
/// @throws Error naming the file
Picture decodeByFreeImage(InputFile& file, const Header& header, const Limits& limits);

/// A description of the pixels in a file, for people.
struct PixelDescription {
    unsigned width = 0;
    unsigned height = 0;
    unsigned bitsPerPixel = 0;
    std::string samples; ///< "32-bit float, three channels"
    std::string color;   ///< "RGB with alpha"
    bool transparent = false;
    Metadata metadata; ///< only what the decoder itself reads
};

/// Reads the header of a file, or decodes it if the header cannot be read alone. @throws Error naming the file
PixelDescription describeByFreeImage(InputFile& file, FileFormat format);

/// Lets faults in decoders end this process from now on, for a process whose parent reports its death.
void dieOfFaults();

/// The version of FreeImage.
std::string freeImageVersion();

} // namespace zqx::pictures
