// Renders directly from the memory of one picture into that of another.
#include "zqx/tools/analysis/Render.h"

#include <memory>

namespace zqx::tools {

using namespace pictures;

namespace {

using Pipeline = img::ImageProcessingPipeline;

bool isNeutral(img::ColorGrading grading) {
    if (grading.getGradientMapIntensity() == 0.0F) {
        grading.setGradientMap(img::ColorGradient()); // without effect
    }
    return grading.compare(img::ColorGrading()) == 0;
}

} // namespace

int neededStages(const Pipeline& pipeline) {
    const int always = Pipeline::STAGE_INVERSION | Pipeline::STAGE_SHARPEN | Pipeline::STAGE_FLIP;
    return isNeutral(pipeline.getColorGrading()) ? always : always | Pipeline::STAGE_COLOR_GRADING;
}

bool changesColors(Pipeline pipeline) {
    int inverted = 0;
    float sharpness = 0.0F;
    pipeline.getInversionEnabled(&inverted);
    pipeline.getSharpness(&sharpness);
    return inverted != 0 || sharpness != 0.0F || !isNeutral(pipeline.getColorGrading());
}

void connect(Pipeline& pipeline, const Picture& source) {
    pipeline.setActiveStages(neededStages(pipeline));
    pipeline.setInputImage(std::make_shared<img::Image>(source.image()));
}

PixelBuffer render(const Pipeline& pipeline, const Picture& source, SampleLayout layout) {
    PixelBuffer pixels(source.width(), source.height(), layout);
    pipeline.execute(pixels.image());
    return pixels;
}

} // namespace zqx::tools
