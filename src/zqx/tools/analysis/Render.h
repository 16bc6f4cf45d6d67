// The adjustments on their way from a decoded picture to pixels.
#pragma once

#include <zqx/img/ImageProcessingPipeline.h>

#include "zqx/pictures/Picture.h"

namespace zqx::tools {

/// The stages that have work to do. Neutral grading still moves 8-bit codes, so it has to be left out to keep pixels.
int neededStages(const img::ImageProcessingPipeline& pipeline);

/// False for adjustments that leave pixels as they are, or only move them.
bool changesColors(img::ImageProcessingPipeline pipeline);

/// Makes a picture the source of a pipeline, which looks into its pixels from then on, with the stages it needs active.
void connect(img::ImageProcessingPipeline& pipeline, const pictures::Picture& source);

/// New pixels of the source's size with what the pipeline makes of it.
pictures::PixelBuffer render(const img::ImageProcessingPipeline& pipeline, const pictures::Picture& source,
                             pictures::SampleLayout layout);

} // namespace zqx::tools
