// Unsharp masking of luminance.
#pragma once

#include <zqx/img/Export.h>
#include <zqx/img/Filter.h>

namespace zqx::img {

/// Sharpens the source image into the output image by an unsharp mask on luminance.
///
/// The difference between a pixel's luminance and its Gaussian-blurred luminance is shrunk by the threshold, scaled by
/// the strength and applied as one gain to the colour channels, so hue is kept; alpha is untouched. Works in linear
/// floats whatever the formats. A pixel of zero luminance has no gain: it becomes non-finite in a float output.
class ZQX_IMG_API Sharpen : public Filter {
public:
    Sharpen() = default;

    /// @param radius standard deviation of the blur in pixels, used as sigma; not checked
    void setRadius(float radius) { mRadius = radius; }
    float getRadius() const { return mRadius; }

    /// @param strength factor on the difference, limited to [0, 5]; NaN is kept
    void setStrength(float strength);
    float getStrength() const { return mStrength; }

    /// @param threshold luminance difference that is ignored, limited to [0, 1]; NaN is kept
    void setThreshold(float threshold);
    float getThreshold() const { return mThreshold; }

    /// Runs the filter. Does nothing unless source and output agree in width and height.
    /// @return always false, also when the work was done: judge by the output
    /// @throws std::bad_alloc
    bool execute() override;

private:
    float mRadius = 1.0F;
    float mStrength = 0.0F;
    float mThreshold = 0.02F;
};

} // namespace zqx::img
