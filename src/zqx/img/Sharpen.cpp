#include <zqx/img/Sharpen.h>

#include <zqx/img/GaussianBlur.h>

#include "kernels/filters/FilterWork.h"
#include "kernels/filters/UnsharpMask.h"
#include "kernels/maths/Limit.h"

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
    // The radius is the standard deviation of the blur.
    const std::vector<float> taps = GaussianBlur::computeKernel(static_cast<double>(mRadius));
    kernels::sharpenLuminance(mSrcImage, mOutImage, taps, {mStrength, mThreshold});
    return false; // on every path: callers judge by the output
}

} // namespace zqx::img
