// The adjustments that are measured.
#pragma once

#include <zqx/img/ColorGrading.h>
#include <zqx/img/ImageProcessingPipeline.h>

namespace bench {

/// Every step of grading in use but the turn of hue.
zqx::img::ColorGrading gradingWithoutHue();

/// Every step in use.
zqx::img::ColorGrading gradingWithHue();

/// Every stage in use, grading without hue.
zqx::img::ImageProcessingPipeline wholePipeline();

} // namespace bench
