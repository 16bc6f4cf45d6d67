// The adjustments that a user can name on the command line: one table for reading, checking and explaining them.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>

#include <zqx/img/ImageProcessingPipeline.h>

namespace zqx::tools {

/// One adjustment. Its neutral value is whatever a new pipeline answers, so it is not repeated here.
struct Parameter {
    enum class Kind { NUMBER, COLOR, SWITCH };
    using Value = std::array<float, 3>; ///< a colour's r, g, b; the other kinds use the first element

    std::string_view name; ///< for --set
    std::string_view path; ///< of its member in a parameter document, from the outermost object
    Kind kind;
    float minimum; ///< of a number
    float maximum;
    std::string_view unit;
    std::string_view meaning; ///< in a few words, without a capital
    std::string_view details; ///< in sentences, for who wants to know more
    void (*set)(img::ImageProcessingPipeline&, const Value&);
    Value (*get)(const img::ImageProcessingPipeline&);
};

/// All adjustments in the order in which they are explained.
std::span<const Parameter> parameters();

/// A parameter's present value in the spelling that --set reads.
std::string formatValue(const Parameter& parameter, const img::ImageProcessingPipeline& pipeline);

/// A number in the fewest digits that read back as the same number, whatever the locale.
std::string formatNumber(float value);
std::string formatNumber(double value);

/// The values that a parameter takes, with their unit: "-5 to 5 stops".
std::string describeRange(const Parameter& parameter);

/// The table of adjustments as help text.
std::string describeParameters();

} // namespace zqx::tools
