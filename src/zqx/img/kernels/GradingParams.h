// Settings of the grading turned into the numbers that its steps use.
#pragma once

#include <cmath>
#include <optional>

#include "ColorScience.h"

namespace zqx::img::kernels {

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
