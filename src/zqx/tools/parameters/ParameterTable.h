// The adjustments that users can name: one table for reading, checking and explaining them.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include <zqx/img/Parameters.h>

namespace zqx::tools {

using img::Parameter;

/// All adjustments in the order in which they are explained.
std::span<const Parameter> parameters();

/// The current value of a parameter in the notation of --set.
std::string formatValue(const Parameter& parameter, const img::ImageProcessingPipeline& pipeline);

/// A number in the fewest digits that read back as the same number, whatever the locale.
std::string formatNumber(float value);
std::string formatNumber(double value);

/// The values that a parameter takes, with their unit: "-5 to 5 stops".
std::string describeRange(const Parameter& parameter);

/// The table of adjustments as help text.
std::string describeParameters();

} // namespace zqx::tools
