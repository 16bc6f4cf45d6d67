// Rendering straight from one bitmap's memory into another's.
#include "Render.h"

#include <memory>

namespace zqx::img::app {

namespace {

using Pipeline = ImageProcessingPipeline;

bool isNeutral(ColorGrading grading) {
    if (grading.getGradientMapIntensity() == 0.0F) {
        grading.setGradientMap(ColorGradient()); // has no say
    }
    return grading.compare(ColorGrading()) == 0;
}

} // namespace

int neededStages(const Pipeline& pipeline) {
    const int always = Pipeline::STAGE_INVERSION | Pipeline::STAGE_SHARPEN | Pipeline::STAGE_FLIP;
    return isNeutral(pipeline.getColorGrading()) ? always : always | Pipeline::STAGE_COLOR_GRADING;
}

void connect(Pipeline& pipeline, const Picture& source) {
    pipeline.setActiveStages(neededStages(pipeline));
    pipeline.setInputImage(std::make_shared<Image>(viewOf(source.bitmap, source.form)));
}

Bitmap render(const Pipeline& pipeline, const Picture& source, Form form) {
    Bitmap bitmap = allocateBitmap(form, source.width(), source.height());
    Image view = viewOf(bitmap, form);
    pipeline.execute(view);
    return bitmap;
}

} // namespace zqx::img::app
