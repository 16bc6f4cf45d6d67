// Hides metadata from the picture decoders.
#pragma once

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/bytes/ByteMask.h"
#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

/// A mask that hides from FreeImage: metadata that its own parsers would read, since damaged files make them access
/// memory out of bounds; the TIFF orientation, which it applies to some sample layouts only; and newer BMP headers,
/// which it refuses. Files that cannot be parsed are passed on to the decoder as they are.
ByteMask maskMetadata(InputFile& file, FileFormat format);

} // namespace zqx::pictures
