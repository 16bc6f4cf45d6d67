// Settings of the grading turned into the numbers that its steps use.
#pragma once

#include <cmath>
#include <optional>

#include "ColorScience.h"

namespace zqx::img::kernels {

/// 2^stops, by the Taylor series: a system's own function may have other last bits on another processor. NaN passes.
inline float exposureFactor(float stops) {
    if (std::isnan(stops)) {
        return stops;
    }
    const double whole = std::floor(static_cast<double>(stops) + 0.5);
    const double x = (static_cast<double>(stops) - whole) * 0.693147180559945309417;
    double term = 1.0;
    double sum = 1.0;
    for (int k = 1; k <= 16; ++k) {
        term *= x / k;
        sum += term;
    }
    return static_cast<float>(std::ldexp(sum, static_cast<int>(whole)));
}

/// Exponent of the contrast curve: tan(contrast * pi / 2), exactly 1 for the neutral 0.5.
/// The cap just below 1 keeps the tangent finite at full contrast. NaN passes.
inline float contrastExponent(float contrast) {
    constexpr float CAP = 0.9999999F;
    constexpr float HALF_PI = 1.5707964F;
    return std::tan((contrast > CAP ? CAP : contrast) * HALF_PI);
}

/// None at exactly 6500 K: the daylight formula does not quite give D65 for that temperature.
inline std::optional<Matrix3> whiteBalance(float kelvin) {
    return kelvin == 6500.0F ? std::nullopt : std::optional(whiteBalanceMatrix(kelvin));
}

} // namespace zqx::img::kernels
