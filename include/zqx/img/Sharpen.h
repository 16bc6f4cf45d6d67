/// @file
/// Unsharp masking of luminance.
#pragma once

#include <zqx/img/Export.h>
#include <zqx/img/Filter.h>
#include <zqx/img/Warnings.h>

namespace zqx::img {

ZQX_IMG_BEGIN_PLAIN_DESTRUCTORS

/// Sharpens the source image into the output image by an unsharp mask on luminance.
///
/// The difference between a pixel's luminance and its Gaussian-blurred luminance is shrunk by the threshold, scaled by
/// the strength and applied as one gain to the colour channels, so hue is kept; alpha is untouched. Works in linear
/// floats whatever the formats. A pixel of zero luminance has no gain: it becomes non-finite in a float output.
/// @ingroup filters
class ZQX_IMG_API Sharpen : public Filter {
public:
    /// A filter without images: radius 1, strength 0, threshold 0.02.
    Sharpen() = default;

    /// @param radius standard deviation of the blur in pixels, used as sigma; not checked
    void setRadius(float radius) { mRadius = radius; }
    /// Standard deviation of the blur in pixels, as set.
    float getRadius() const { return mRadius; }

    /// @param strength factor on the difference, limited to [0, 5]; NaN is kept
    void setStrength(float strength);
    /// Factor on the difference, 0 to 5.
    float getStrength() const { return mStrength; }

    /// @param threshold luminance difference that is ignored, limited to [0, 1]; NaN is kept
    void setThreshold(float threshold);
    /// Luminance difference that is ignored, 0 to 1.
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

ZQX_IMG_END_PLAIN_DESTRUCTORS

} // namespace zqx::img
