// Settings of the grading turned into the numbers that its steps use.
#pragma once

#include <optional>

#include "kernels/maths/ColorScience.h"
#include "kernels/maths/ScalarMaths.h"

namespace zqx::img::kernels {

/// 2^stops. NaN passes.
inline float exposureFactor(float stops) {
    return static_cast<float>(maths::exp2(static_cast<double>(stops)));
}

/// Exponent of the contrast curve: tan(contrast * pi / 2), exactly 1 for the neutral 0.5.
/// The cap just below 1 keeps the tangent finite at full contrast. NaN passes.
inline float contrastExponent(float contrast) {
    constexpr float CAP = 0.9999999F;
    constexpr float HALF_PI = 1.5707964F;
    return static_cast<float>(maths::tan(static_cast<double>((contrast > CAP ? CAP : contrast) * HALF_PI)));
}

/// None at exactly 6500 K: the daylight formula does not quite give D65 for that temperature.
inline std::optional<Matrix3> whiteBalance(float kelvin) {
    return kelvin == 6500.0F ? std::nullopt : std::optional(whiteBalanceMatrix(kelvin));
}

} // namespace zqx::img::kernels
