// The grading settings as the literal, scalar rules of the tests take them.
#pragma once

#include <zqx/img/ColorGrading.h>

#include "oracle/Grade.h"

namespace bench {

inline oracle::Values getValues(const zqx::img::Color& color) {
    return {color.r, color.g, color.b, color.a};
}

inline oracle::Prepared literalParams(const zqx::img::ColorGrading& grading) {
    const zqx::img::ColorGradient& gradient = grading.getGradientMap();
    return oracle::prepare({.exposure = grading.getExposure(),
                            .contrast = grading.getContrast(),
                            .highlight = grading.getHighlight(),
                            .shadow = grading.getShadow(),
                            .temperature = grading.getTemperature(),
                            .hue = grading.getHue(),
                            .saturation = grading.getSaturation(),
                            .intensity = grading.getGradientMapIntensity(),
                            .stops = {getValues(gradient.getColorAt(0)), getValues(gradient.getColorAt(255))}});
}

} // namespace bench
