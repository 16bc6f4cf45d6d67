// Formats the table of adjustments and its values.
#include "zqx/tools/parameters/ParameterTable.h"

#include "zqx/text/Numbers.h"
#include "zqx/text/Width.h"

namespace zqx::tools {

namespace {

using Kind = Parameter::Kind;
using Value = Parameter::Value;

} // namespace

std::span<const Parameter> parameters() {
    return img::PARAMETERS;
}

std::string formatNumber(float value) {
    return text::shortest(value);
}

std::string formatNumber(double value) {
    return text::shortest(value);
}

std::string formatValue(const Parameter& parameter, const img::ImageProcessingPipeline& pipeline) {
    const Value value = parameter.get(pipeline);
    switch (parameter.kind) {
    case Kind::COLOR: return formatNumber(value[0]) + "," + formatNumber(value[1]) + "," + formatNumber(value[2]);
    case Kind::SWITCH: return value[0] != 0.0F ? "true" : "false";
    case Kind::NUMBER: break;
    }
    return formatNumber(value[0]);
}

std::string describeRange(const Parameter& parameter) {
    switch (parameter.kind) {
    case Kind::COLOR: return "r,g,b";
    case Kind::SWITCH: return "true, false";
    case Kind::NUMBER: break;
    }
    std::string range = formatNumber(parameter.minimum) + " to " + formatNumber(parameter.maximum);
    return parameter.unit.empty() ? range : range + " " + std::string(parameter.unit);
}

std::string describeParameters() {
    const img::ImageProcessingPipeline neutral(0);
    std::string text = "Adjustments for --set:\n  " + text::padded("name", 20) + text::padded("range", 20) +
                       text::padded("default", 9) + "meaning\n";
    for (const Parameter& parameter : img::PARAMETERS) {
        text += "  " + text::padded(parameter.name, 20) + text::padded(describeRange(parameter), 20) +
                text::padded(formatValue(parameter, neutral), 9) + std::string(parameter.meaning) + "\n";
    }
    return text;
}

} // namespace zqx::tools
