// The adjustments on their way from a decoded picture to pixels.
#pragma once

#include <zqx/img/ImageProcessingPipeline.h>

#include "Picture.h"

namespace zqx::img::app {

/// The stages that have work to do. Neutral grading still moves 8-bit codes, so it has to be left out to keep pixels.
int neededStages(const ImageProcessingPipeline& pipeline);

/// Makes a picture the source of a pipeline, which looks into its bitmap from then on, with the stages it needs active.
void connect(ImageProcessingPipeline& pipeline, const Picture& source);

/// A new bitmap of the source's size with what the pipeline makes of it.
Bitmap render(const ImageProcessingPipeline& pipeline, const Picture& source, Form form);

} // namespace zqx::img::app
