// Before and after in one picture.
#include "zqx/tools/analysis/SplitPicture.h"

#include "kernels/geometry/Compose.h"
#include "zqx/tools/analysis/Render.h"

namespace zqx::tools {

using namespace pictures;

void splitWith(PixelBuffer& after, img::ImageProcessingPipeline pipeline, const Picture& source) {
    pipeline.setActiveStages(0);
    const PixelBuffer before = render(pipeline, source, after.layout());
    img::kernels::splitWith(before.image(), after.image());
}

} // namespace zqx::tools
