// Files that end early, of the formats whose decoders fill up what is missing without a word.
#pragma once

#include "zqx/pictures/bytes/Probe.h"

namespace zqx::pictures {

enum class Completeness {
    COMPLETE, ///< or a file of which this cannot be told: the decoder has the last word
    CUT_SHORT,
    DAMAGED,
};

/// Whether a file has all the pixels that its header promises: GIF, PCX, Targa, DDS, ICO, WBMP and TIFF files. Reads
/// compressed pixels once, in linear time.
Completeness checkCompleteness(InputFile& file, const Header& header);

} // namespace zqx::pictures
