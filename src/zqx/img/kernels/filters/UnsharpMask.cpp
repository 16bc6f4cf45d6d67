#include "kernels/filters/UnsharpMask.h"

#include "kernels/filters/BandBlur.h"
#include "kernels/filters/FilterWork.h"
#include "kernels/maths/ColorScience.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "kernels/filters/UnsharpMask.cpp"
#include <hwy/foreach_target.h> // before highway.h
#include <hwy/highway.h>

#include "kernels/Simd.h"

#ifndef ZQX_IMG_SHARPEN_RUN_
#define ZQX_IMG_SHARPEN_RUN_
namespace zqx::img::kernels {

/// Multiplies the colour planes of a run by the gain against their blurred luminance.
using SharpenRun = void (*)(Run& run, std::size_t length, const float* blurred, const SharpenSettings& settings);

} // namespace zqx::img::kernels
#endif

HWY_BEFORE_NAMESPACE();
namespace zqx::img::kernels::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using F32 = hn::ScalableTag<float>;

/// Shrinks the difference by the threshold towards zero. There is no guard against a luminance of zero.
HWY_INLINE hn::Vec<F32> gain(hn::Vec<F32> luminance, hn::Vec<F32> blurred, const SharpenSettings& settings) {
    const F32 d;
    const auto zero = hn::Zero(d);
    const auto threshold = hn::Set(d, settings.threshold);
    const auto difference = hn::Sub(luminance, blurred);
    const auto raised = hn::Add(difference, threshold);
    const auto lowered = hn::Sub(difference, threshold);
    const auto shrunk = hn::IfThenElse(hn::Lt(difference, zero), hn::IfThenElse(hn::Gt(raised, zero), zero, raised),
                                       hn::IfThenElse(hn::Lt(lowered, zero), zero, lowered));
    return hn::Div(hn::Add(hn::Mul(hn::Set(d, settings.strength), shrunk), luminance), luminance);
}

HWY_INLINE void multiply(float* plane, hn::Vec<F32> factor) {
    const F32 d;
    hn::Store(hn::Mul(hn::Load(d, plane), factor), d, plane);
}

void sharpenGrey(Run& run, std::size_t length, const float* blurred, const SharpenSettings& settings) {
    const F32 d;
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        multiply(run.r + i, gain(hn::Load(d, run.r + i), hn::Load(d, blurred + i), settings));
    }
}

void sharpenColor(Run& run, std::size_t length, const float* blurred, const SharpenSettings& settings) {
    const F32 d;
    for (std::size_t i = 0; i < length; i += hn::Lanes(d)) {
        // Green first: the order of the sum counts.
        const auto greenAndRed = hn::Add(hn::Mul(hn::Set(d, LUMA_GREEN), hn::Load(d, run.g + i)),
                                         hn::Mul(hn::Set(d, LUMA_RED), hn::Load(d, run.r + i)));
        const auto luminance = hn::Add(greenAndRed, hn::Mul(hn::Set(d, LUMA_BLUE), hn::Load(d, run.b + i)));
        const auto factor = gain(luminance, hn::Load(d, blurred + i), settings);
        multiply(run.r + i, factor);
        multiply(run.g + i, factor);
        multiply(run.b + i, factor);
    }
}

} // namespace

SharpenRun sharpenRun(bool isGrey) {
    return isGrey ? &sharpenGrey : &sharpenColor;
}

} // namespace zqx::img::kernels::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace zqx::img::kernels {

namespace {
HWY_EXPORT(sharpenRun);
} // namespace

void sharpenLuminance(const Image& source, const Image& output, const std::vector<float>& taps,
                      const SharpenSettings& settings) {
    const std::optional<FilterWork> work = FilterWork::between(source, output, Treatment::OF_PIXELS);
    if (!work) {
        return;
    }
    const bool isGrey = work->planes() == 1;
    const auto sharpen = HWY_DYNAMIC_DISPATCH(sharpenRun)(isGrey);
    const auto readLuminance = [&](std::size_t y, std::size_t first, std::size_t length, Run& run) {
        work->read(y, first, length, run);
        if (!isGrey) {
            lumaIntoRed(run, length);
        }
    };
    const auto write = [&](std::size_t y, std::size_t first, std::size_t length, Run& blurred) {
        Run run;
        work->read(y, first, length, run);
        sharpen(run, length, blurred.r, settings);
        work->write(y, first, length, run);
    };
    blurInBands({work->width(), work->height(), 1, 1, taps.size() / 2, work->isInPlace()}, taps, readLuminance, write);
}

} // namespace zqx::img::kernels
#endif
