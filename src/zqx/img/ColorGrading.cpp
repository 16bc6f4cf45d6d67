// The grading settings and their preparation. The operation itself is in kernels/Grade.
#include <zqx/img/ColorGrading.h>

#include "kernels/grading/Grade.h"
#include "kernels/grading/GradingParams.h"
#include "kernels/maths/Limit.h"

namespace zqx::img {

namespace {

float limited(float value, const ParameterRange& range) {
    return kernels::limit(value, range.minimum, range.maximum);
}

} // namespace

void ColorGrading::setExposure(float stops) {
    mExposure = limited(stops, range::EXPOSURE);
}

void ColorGrading::setContrast(float contrast) {
    mContrast = limited(contrast, range::CONTRAST);
}

void ColorGrading::setHighlight(float highlight) {
    mHighlight = limited(highlight, range::HIGHLIGHT);
}

void ColorGrading::setShadow(float shadow) {
    mShadow = limited(shadow, range::SHADOW);
}

void ColorGrading::setTemperature(float kelvin) {
    mTemperature = limited(kelvin, range::TEMPERATURE);
}

void ColorGrading::setHue(float degrees) {
    mHue = limited(degrees, range::HUE);
}

void ColorGrading::setSaturation(float factor) {
    mSaturation = limited(factor, range::SATURATION);
}

void ColorGrading::setGradientMapIntensity(float weight) {
    mGradientMapIntensity = limited(weight, range::GRADIENT_MAP_INTENSITY);
}

void ColorGrading::setGradientMap(const ColorGradient& gradient) {
    mGradientMap = gradient;
}

int ColorGrading::compare(const ColorGrading& other) const {
    constexpr float ColorGrading::*SETTINGS[] = {
        &ColorGrading::mExposure,    &ColorGrading::mContrast,
        &ColorGrading::mHighlight,   &ColorGrading::mShadow,
        &ColorGrading::mTemperature, &ColorGrading::mHue,
        &ColorGrading::mSaturation,  &ColorGrading::mGradientMapIntensity,
    };
    for (const auto setting : SETTINGS) {
        if (this->*setting != other.*setting) {
            return this->*setting < other.*setting ? -1 : 1;
        }
    }
    return mGradientMap.compare(other.mGradientMap);
}

ColorGradingParamsInternal ColorGrading::prepareParams() const {
    ColorGradingParamsInternal params;
    params.exposureFactor = kernels::exposureFactor(mExposure);
    params.contrastExponent = kernels::contrastExponent(mContrast);
    params.highlight = mHighlight;
    params.shadow = mShadow;
    params.whiteBalance = kernels::whiteBalance(mTemperature);
    params.hue = mHue;
    params.saturation = mSaturation;
    params.gradientMap = &mGradientMap;
    params.gradientMapIntensity = mGradientMapIntensity;
    return params;
}

void ColorGrading::apply(const Image& source, Image& destination) const {
    kernels::gradePixels(source, destination, prepareParams());
}

void ColorGrading::generate3DLUT_RGB32F(std::size_t size, float* pLUT) const {
    kernels::bakeLinearTable(size, pLUT, prepareParams());
}

void ColorGrading::generate3DLUT_SRGB8(std::size_t size, unsigned char* pLUT) const {
    kernels::bakeEncodedTable(size, pLUT, prepareParams());
}

} // namespace zqx::img
