// The one place where picture headers are read, before any decoder is involved.
#pragma once

#include <string>
#include <vector>

#include "zqx/pictures/HeaderInfo.h"
#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

/// The fields of a TIFF directory that describe its samples.
struct TiffSamples {
    unsigned bits = 1;
    unsigned perPixel = 1;
    bool floats = false;
    bool premultiplied = false;
};

/// Everything that is known about a file before it is decoded.
struct Header {
    HeaderInfo info;
    TiffSamples tiff;              ///< of TIFF files
    std::uint64_t dataEnd = 0;     ///< end of the pixel data in a TIFF file; 0 if unknown
    int orientation = 1;           ///< Exif orientation of TIFF and JPEG files
    std::vector<std::string> lost; ///< content that is not read, such as "a gain map"
};

/// Reads the header of a file. Whatever it says, only a limited part of the file is read, in linear time. No decoder is
/// involved, so this is safe for untrusted files. Values that make no sense are left at 0; decoding will report the
/// problem.
Header probe(InputFile& file);

/// Reads the header of a file of a known format.
Header probeAs(InputFile& file, FileFormat format);

/// Whether headers of a format are read here.
bool isProbed(FileFormat format);

} // namespace zqx::pictures
