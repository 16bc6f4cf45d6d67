// Parses settings and applies them to a pipeline.
#include "zqx/tools/parameters/Setting.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>

#include "zqx/pictures/files/Error.h"
#include "zqx/tools/parameters/ParameterTable.h"
#include "zqx/tools/parameters/Remarks.h"
#include "zqx/tools/parameters/Spelling.h"

namespace zqx::tools {

using namespace pictures;

namespace {

using Kind = Parameter::Kind;
using Value = Parameter::Value;

const Parameter& nearestParameter(std::string_view name) {
    return *std::ranges::min_element(parameters(), {},
                                     [&](const Parameter& known) { return editDistance(name, known.name); });
}

const Parameter& findParameter(const std::string& option, std::string_view name) {
    const auto found = std::ranges::find(parameters(), name, &Parameter::name);
    if (found != parameters().end()) {
        return *found;
    }
    throw UsageError(option, "unknown adjustment; did you mean \"" + std::string(nearestParameter(name).name) + "\"?");
}

std::optional<float> readNumber(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1);
    }
    double number = 0.0;
    const char* end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, number);
    // A number that overflows to infinity as a float is no more useful than "inf" itself.
    if (failure != std::errc() || stop != end || !std::isfinite(number) ||
        std::abs(number) > static_cast<double>(std::numeric_limits<float>::max())) {
        return std::nullopt;
    }
    return static_cast<float>(number);
}

std::optional<Value> readColor(std::string_view text) {
    Value color{};
    for (std::size_t i = 0; i < color.size(); ++i) {
        const std::size_t comma = text.find(',');
        const bool last = i + 1 == color.size();
        const std::optional<float> number = readNumber(text.substr(0, comma));
        if (!number || last != (comma == std::string_view::npos)) {
            return std::nullopt;
        }
        color[i] = *number;
        text.remove_prefix(last ? text.size() : comma + 1);
    }
    return color;
}

std::optional<Value> readSwitch(std::string_view text) {
    for (const std::string_view yes : {"true", "1", "on"}) {
        if (text == yes) {
            return Value{1.0F};
        }
    }
    for (const std::string_view no : {"false", "0", "off"}) {
        if (text == no) {
            return Value{0.0F};
        }
    }
    return std::nullopt;
}

Value readValue(const std::string& option, const Parameter& parameter, std::string_view text) {
    std::optional<Value> value;
    std::string wanted;
    switch (parameter.kind) {
    case Kind::NUMBER:
        if (const std::optional<float> number = readNumber(text)) {
            value = Value{*number};
        }
        wanted = "a number from " + formatNumber(parameter.minimum) + " to " + formatNumber(parameter.maximum);
        break;
    case Kind::COLOR:
        value = readColor(text);
        wanted = "three numbers r,g,b";
        break;
    case Kind::SWITCH:
        value = readSwitch(text);
        wanted = "true, false, 1, 0, on or off";
        break;
    }
    if (!value) {
        throw UsageError(option, "the value must be " + wanted);
    }
    return *value;
}

} // namespace

void applySetting(img::ImageProcessingPipeline& pipeline, const std::string& setting, Remarks& remarks) {
    const std::string option = "--set " + setting;
    const std::size_t equals = setting.find('=');
    if (equals == std::string::npos) {
        throw UsageError(option, "must be written name=value");
    }
    const Parameter& parameter = findParameter(option, std::string_view(setting).substr(0, equals));
    const Value value = readValue(option, parameter, std::string_view(setting).substr(equals + 1));
    parameter.set(pipeline, value);
    if (parameter.kind == Kind::NUMBER && (value[0] < parameter.minimum || value[0] > parameter.maximum)) {
        remarks.add(option,
                    "outside the range " + formatNumber(parameter.minimum) + " to " + formatNumber(parameter.maximum),
                    "; limited to " + formatValue(parameter, pipeline));
    }
}

} // namespace zqx::tools
