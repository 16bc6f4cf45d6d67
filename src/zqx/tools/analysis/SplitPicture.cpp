// Before and after, side by side in one picture.
#include "zqx/tools/analysis/SplitPicture.h"

#include <algorithm>
#include <limits>

#include "zqx/tools/analysis/Render.h"

namespace zqx::tools {

using namespace pictures;

namespace {

void fillWhite(img::Image& image, std::size_t x, std::size_t y) {
    auto* pixel = static_cast<unsigned char*>(image.getPixelPtr(x, y));
    if (image.hasFloatFormat()) {
        std::fill_n(reinterpret_cast<float*>(pixel), image.getBytePixelStride() / sizeof(float), 1.0F);
    } else {
        std::fill_n(pixel, image.getBytePixelStride(), std::numeric_limits<unsigned char>::max());
    }
}

} // namespace

void splitWith(PixelBuffer& after, img::ImageProcessingPipeline pipeline, const Picture& source) {
    pipeline.setActiveStages(0);
    const PixelBuffer before = render(pipeline, source, after.layout());
    const img::Image& left = before.image();
    img::Image& image = after.image();
    const std::size_t middle = image.getWidth() / 2;
    for (std::size_t y = 0; y < image.getHeight(); ++y) {
        const auto* from = static_cast<const unsigned char*>(left.getRowPtr(y));
        std::copy_n(from, middle * left.getBytePixelStride(), static_cast<unsigned char*>(image.getRowPtr(y)));
        for (std::size_t x = middle > 0 ? middle - 1 : 0; x < std::min(middle + 1, image.getWidth()); ++x) {
            fillWhite(image, x, y);
        }
    }
}

} // namespace zqx::tools
