// The one reader of picture headers. Whoever wants to know something of a file before its pixels asks it once.
#pragma once

#include <string>
#include <vector>

#include "zqx/pictures/HeaderInfo.h"
#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

/// The fields of a TIFF directory that say what a sample is.
struct TiffSamples {
    unsigned bits = 1;
    unsigned perPixel = 1;
    bool floats = false;
    bool premultiplied = false;
};

/// What is to be known of a file before it is decoded.
struct Header {
    HeaderInfo info;
    TiffSamples tiff;              ///< of TIFF files
    std::uint64_t dataEnd = 0;     ///< where the last of its pixels end, of TIFF files; 0 where unknown
    int orientation = 1;           ///< as Exif numbers it, of TIFF and JPEG files
    std::vector<std::string> lost; ///< what the file holds beside the picture and nobody here reads: "a gain map"
};

/// Reads the header of a file: little of it and in linear time, whatever it says. No decoder is asked, so it does no
/// harm to look at files of strangers. What makes no sense is left at 0: the decoder will say more of it.
Header probe(InputFile& file);

/// The same for a file whose format is known.
Header probeAs(InputFile& file, FileFormat format);

/// True for the formats whose headers are read here.
bool isProbed(FileFormat format);

} // namespace zqx::pictures
