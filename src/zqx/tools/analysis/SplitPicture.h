// Before and after in one picture.
#pragma once

#include <zqx/img/ImageProcessingPipeline.h>

#include "zqx/pictures/Picture.h"

namespace zqx::tools {

/// Replaces the left half of a result by the unadjusted source, with a white line two pixels wide in the middle.
/// @param after the result of the pipeline; changed in place
void splitWith(pictures::PixelBuffer& after, img::ImageProcessingPipeline pipeline, const pictures::Picture& source);

} // namespace zqx::tools
