// The table of adjustments in words.
#include "ParameterTable.h"

#include <algorithm>
#include <charconv>

namespace zqx::img::app {

namespace {

using Kind = Parameter::Kind;
using Value = Parameter::Value;

template <typename Number>
std::string fewestDigits(Number value) {
    char digits[64];
    const auto [end, failure] = std::to_chars(digits, digits + sizeof digits, value);
    return failure == std::errc() ? std::string(digits, end) : std::string();
}

std::string padded(std::string_view text, std::size_t width) {
    std::string cell(text);
    cell.resize(std::max(width, cell.size()), ' ');
    return cell;
}

} // namespace

std::span<const Parameter> parameters() {
    return PARAMETERS;
}

std::string formatNumber(float value) {
    return fewestDigits(value);
}

std::string formatNumber(double value) {
    return fewestDigits(value);
}

std::string formatValue(const Parameter& parameter, const ImageProcessingPipeline& pipeline) {
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
    const ImageProcessingPipeline neutral(0);
    std::string text =
        "Adjustments for --set:\n  " + padded("name", 20) + padded("range", 20) + padded("default", 9) + "meaning\n";
    for (const Parameter& parameter : PARAMETERS) {
        text += "  " + padded(parameter.name, 20) + padded(describeRange(parameter), 20) +
                padded(formatValue(parameter, neutral), 9) + std::string(parameter.meaning) + "\n";
    }
    return text;
}

} // namespace zqx::img::app
