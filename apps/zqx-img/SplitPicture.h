// One picture that shows before and after.
#pragma once

#include <zqx/img/ImageProcessingPipeline.h>

#include "Picture.h"

namespace zqx::img::app {

/// Puts the untouched source over the left half of the result and a white line of two pixels between them.
/// @param after what the pipeline made of the source, in the given form; changed in place
void splitWith(const Bitmap& after, Form form, ImageProcessingPipeline pipeline, const Picture& source);

} // namespace zqx::img::app
