/// @file
/// The values that adjustments may take. Setters, documents and programs all take them from here.
#pragma once

namespace zqx::img {

/// The values that a number may take, and the one that changes nothing.
/// @ingroup pipeline
struct ParameterRange {
    float minimum; ///< what is below it becomes it
    float maximum; ///< what is above it becomes it
    float neutral; ///< the default
};

/// Ranges of the adjustments, as classes and parameter documents have them. The record EColorGradingParams has others
/// for highlight and shadow.
namespace range {

/// Stops.
/// @ingroup pipeline
inline constexpr ParameterRange EXPOSURE = {-5.0F, 5.0F, 0.0F};
/// Steepness through middle grey.
/// @ingroup pipeline
inline constexpr ParameterRange CONTRAST = {0.0F, 1.0F, 0.5F};
/// Slope added above 0.66.
/// @ingroup pipeline
inline constexpr ParameterRange HIGHLIGHT = {-1.0F, 8.0F, 0.0F};
/// Slope added below 0.33.
/// @ingroup pipeline
inline constexpr ParameterRange SHADOW = {-8.0F, 1.0F, 0.0F};
/// Kelvin.
/// @ingroup pipeline
inline constexpr ParameterRange TEMPERATURE = {2500.0F, 10500.0F, 6500.0F};
/// Degrees.
/// @ingroup pipeline
inline constexpr ParameterRange HUE = {-180.0F, 180.0F, 0.0F};
/// Factor on the distance from luma.
/// @ingroup pipeline
inline constexpr ParameterRange SATURATION = {0.0F, 2.0F, 1.0F};
/// Weight of the gradient's colours.
/// @ingroup pipeline
inline constexpr ParameterRange GRADIENT_MAP_INTENSITY = {0.0F, 1.0F, 0.0F};
/// Above the neutral value sharpens, below softens.
/// @ingroup pipeline
inline constexpr ParameterRange SHARPNESS = {-1.0F, 1.0F, 0.0F};

} // namespace range

} // namespace zqx::img
