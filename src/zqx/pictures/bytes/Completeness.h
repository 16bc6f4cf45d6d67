// Detection of truncated files in formats whose decoders silently fill in missing pixels.
#pragma once

#include "zqx/pictures/bytes/Probe.h"

namespace zqx::pictures {

enum class Completeness {
    COMPLETE, ///< or unknown, in which case the decoder has the last word
    CUT_SHORT,
    DAMAGED,
};

/// Whether a file has all the pixels that its header announces, for GIF, PCX, Targa, DDS, ICO, WBMP and TIFF.
/// Compressed pixels are read once, in linear time.
Completeness checkCompleteness(InputFile& file, const Header& header);

} // namespace zqx::pictures
