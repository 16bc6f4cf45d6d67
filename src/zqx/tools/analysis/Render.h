// Applies the adjustments of a pipeline to a decoded picture.
#pragma once

#include <zqx/img/ImageProcessingPipeline.h>

#include "zqx/pictures/Picture.h"

namespace zqx::tools {

/// The stages that have something to do. Neutral grading still changes some 8-bit codes, so it must be skipped to
/// preserve pixels exactly.
int neededStages(const img::ImageProcessingPipeline& pipeline);

/// Whether the adjustments change colours, rather than only moving pixels or doing nothing.
bool changesColors(img::ImageProcessingPipeline pipeline);

/// Makes a picture the source of a pipeline and activates the stages that are needed. The picture must outlive the
/// pipeline's use of it.
void connect(img::ImageProcessingPipeline& pipeline, const pictures::Picture& source);

/// Runs the pipeline. The result has the size of the source.
pictures::PixelBuffer render(const img::ImageProcessingPipeline& pipeline, const pictures::Picture& source,
                             pictures::SampleLayout layout);

} // namespace zqx::tools
