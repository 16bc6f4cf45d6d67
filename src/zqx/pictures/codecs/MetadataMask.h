// Keeps metadata away from the picture decoders.
#pragma once

#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

/// Hides from FreeImage the metadata that its own readers would take apart, which damaged files lead far out of bounds,
/// the orientation that its TIFF decoder would act on for some kinds of samples and not for others, and the newer
/// headers of BMP, which it refuses. Files of which no sense can be made are left to the decoder as they are.
void maskMetadata(InputFile& file, FREE_IMAGE_FORMAT format);

} // namespace zqx::pictures
