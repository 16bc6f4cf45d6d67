// One picture that shows before and after.
#pragma once

#include <zqx/img/ImageProcessingPipeline.h>

#include "zqx/pictures/Picture.h"

namespace zqx::tools {

/// Puts the untouched source over the left half of the result and a white line of two pixels between them.
/// @param after what the pipeline made of the source; changed in place
void splitWith(pictures::PixelBuffer& after, img::ImageProcessingPipeline pipeline, const pictures::Picture& source);

} // namespace zqx::tools
