// The clamp of every parameter setter.
#pragma once

namespace zqx::img::kernels {

/// A value above the maximum gives the maximum, else one below the minimum the minimum; NaN passes through.
constexpr float limit(float value, float minimum, float maximum) {
    return value > maximum ? maximum : minimum > value ? minimum : value;
}

} // namespace zqx::img::kernels
