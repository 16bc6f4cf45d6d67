#include <zqx/img/Sharpen.h>

#include <zqx/img/GaussianBlur.h>

#include "kernels/Limit.h"
#include "kernels/Luminance.h"
#include "kernels/WorkingImage.h"

namespace zqx::img {

void Sharpen::setStrength(float strength) {
    mStrength = kernels::limit(strength, 0.0F, 5.0F);
}

void Sharpen::setThreshold(float threshold) {
    mThreshold = kernels::limit(threshold, 0.0F, 1.0F);
}

bool Sharpen::execute() {
    if (!kernels::haveSameSize(mSrcImage, mOutImage)) {
        return false;
    }
    const std::shared_ptr<Image> working = kernels::beginWork(mSrcImage, mOutImage);
    if (!working) {
        return false;
    }
    Image luminance(working->getWidth(), working->getHeight(), Image::GRAY32F, 1);
    kernels::bringInto(*working, luminance);

    GaussianBlur blur;
    blur.setSrcImage(luminance);
    blur.setOutput(luminance);
    blur.setSigma(mRadius); // the radius is the standard deviation
    blur.execute();

    kernels::applyLuminanceGain(*working, luminance, mStrength, mThreshold);
    kernels::endWork(*working, mOutImage);
    return false; // on every path: callers judge by the output
}

} // namespace zqx::img
