// Keeps metadata away from the picture decoders.
#pragma once

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/bytes/ByteMask.h"
#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

/// What hides from FreeImage the metadata that its own readers would take apart, which damaged files lead far out of
/// bounds, the orientation that its TIFF decoder would act on for some kinds of samples and not for others, and the
/// newer headers of BMP, which it refuses. Files of which no sense can be made are left to the decoder as they are.
ByteMask maskMetadata(InputFile& file, FileFormat format);

} // namespace zqx::pictures
