// See Settings.h.
#include "common/Settings.h"

using namespace zqx::img;

namespace bench {

ColorGrading gradingWithoutHue() {
    ColorGrading grading;
    grading.setExposure(0.3F);
    grading.setContrast(0.6F);
    grading.setHighlight(-0.2F);
    grading.setShadow(0.2F);
    grading.setTemperature(5500.0F);
    grading.setSaturation(1.2F);
    grading.setGradientMapIntensity(0.3F);
    grading.setGradientMap(ColorGradient({0.05F, 0.0F, 0.1F, 1.0F}, {1.0F, 0.9F, 0.7F, 1.0F}));
    return grading;
}

ColorGrading gradingWithHue() {
    ColorGrading grading = gradingWithoutHue();
    grading.setHue(20.0F);
    return grading;
}

ImageProcessingPipeline wholePipeline() {
    ImageProcessingPipeline pipeline(ImageProcessingPipeline::ALL_STAGES);
    pipeline.setInversionEnabled(1);
    pipeline.setColorGrading(gradingWithoutHue());
    pipeline.setSharpness(0.3F);
    pipeline.setFlipHorizontal(1);
    pipeline.setFlipVertical(1);
    return pipeline;
}

} // namespace bench
