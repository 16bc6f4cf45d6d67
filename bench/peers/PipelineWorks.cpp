// The whole pipeline on a preview, against its own cost per pixel on a large picture: what a call costs besides pixels.
#include "peers/Work.h"

#include <memory>

#include "common/Pictures.h"
#include "common/Settings.h"

using namespace zqx::img;

namespace bench {

namespace {

constexpr std::size_t PREVIEW_SIZE = 256;

std::function<void()> getRendering(std::size_t width, std::size_t height) {
    const auto pipeline = std::make_shared<ImageProcessingPipeline>(wholePipeline());
    const auto target = blankPicture(width, height, Image::SRGB8);
    pipeline->setInputImage(photograph(width, height, Image::SRGB8));
    return [=] { pipeline->execute(*target); };
}

Work preview(const Conditions& conditions) {
    const std::size_t pixels = PREVIEW_SIZE * PREVIEW_SIZE;
    return {.ours = getRendering(PREVIEW_SIZE, PREVIEW_SIZE),
            .peer = getRendering(conditions.width, conditions.height),
            .pixels = pixels,
            .peerPixels = conditions.pixels(),
            .bytes = pixels * 6,
            .calls = 20};
}

} // namespace

std::vector<WorkEntry> pipelineWorks(const Conditions& conditions) {
    return {{"whole pipeline, 256 x 256 SRGB8, per pixel", "the same on the large picture", 1.0 / 1.5, 0.0,
             [=] { return preview(conditions); }}};
}

} // namespace bench
