// The grading settings and their preparation. The operation itself is in kernels/Grade.
#include <zqx/img/ColorGrading.h>

#include "kernels/Grade.h"
#include "kernels/GradingParams.h"
#include "kernels/Limit.h"

namespace zqx::img {

void ColorGrading::setExposure(float stops) {
    mExposure = kernels::limit(stops, -5.0F, 5.0F);
}

void ColorGrading::setContrast(float contrast) {
    mContrast = kernels::limit(contrast, 0.0F, 1.0F);
}

void ColorGrading::setHighlight(float highlight) {
    mHighlight = kernels::limit(highlight, -1.0F, 8.0F);
}

void ColorGrading::setShadow(float shadow) {
    mShadow = kernels::limit(shadow, -8.0F, 1.0F);
}

void ColorGrading::setTemperature(float kelvin) {
    mTemperature = kernels::limit(kelvin, 2500.0F, 10500.0F);
}

void ColorGrading::setHue(float degrees) {
    mHue = kernels::limit(degrees, -180.0F, 180.0F);
}

void ColorGrading::setSaturation(float factor) {
    mSaturation = kernels::limit(factor, 0.0F, 2.0F);
}

void ColorGrading::setGradientMapIntensity(float weight) {
    mGradientMapIntensity = kernels::limit(weight, 0.0F, 1.0F);
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
