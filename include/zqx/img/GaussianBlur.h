/// @file
/// Separable Gaussian blur in linear light.
#pragma once

#include <cstddef>
#include <vector>

#include <zqx/img/Export.h>
#include <zqx/img/Filter.h>
#include <zqx/img/Warnings.h>

namespace zqx::img {

ZQX_IMG_BEGIN_PLAIN_DESTRUCTORS

/// Blurs the source image into the output image with a Gaussian of standard deviation sigma pixels.
///
/// Works in linear floats whatever the formats; all channels are blurred alike, alpha included and not premultiplied.
/// Borders are replicated. With a float output format the work is done in place in the output, which may be the source.
/// @ingroup filters
class ZQX_IMG_API GaussianBlur : public Filter {
public:
    /// A filter without images and with a sigma of 0: set one before it runs.
    GaussianBlur() = default;

    /// @param sigma standard deviation in pixels, positive; not checked. With 0 the kernel, and so the result, is NaN
    void setSigma(float sigma) { mSigma = sigma; }
    /// The standard deviation in pixels, as set.
    float getSigma() const { return mSigma; }

    /// Half the radius.
    static double radius2sigma(const std::size_t& radius);

    /// The taps of the blur: 2 * ceil(2 * sigma) + 1 values, symmetric, summing to one.
    ///
    /// Each tap is the integral of the normal density over the tap's unit interval by Simpson's rule (about 1000
    /// density evaluations in all), normalised. A sigma of 0 gives taps that are not numbers, and so does a kernel of
    /// more than 999 taps, where no sample is left to integrate with; a negative sigma has no meaning.
    /// @throws std::bad_alloc, std::length_error for a sigma beyond any memory
    static std::vector<float> computeKernel(double sigma);

    /// Runs the blur. Does nothing unless source and output agree in width and height.
    /// @return always false, also when the blur was done: judge by the output
    /// @throws std::bad_alloc
    bool execute() override;

private:
    float mSigma = 0.0F;
};

ZQX_IMG_END_PLAIN_DESTRUCTORS

} // namespace zqx::img
