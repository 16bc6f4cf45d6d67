// The table of adjustments and the reading of --params and --set.
#include "ParameterTable.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <numeric>
#include <optional>

#include <CLI/CLI.hpp>

#include "Error.h"
#include "InputFile.h"

namespace zqx::img::app {

namespace {

using Pipeline = ImageProcessingPipeline;
using Kind = Parameter::Kind;
using Value = Parameter::Value;

template <void (ColorGrading::*SET)(float)>
void setGrading(Pipeline& pipeline, const Value& value) {
    ColorGrading grading = pipeline.getColorGrading();
    (grading.*SET)(value[0]);
    pipeline.setColorGrading(grading);
}

template <float (ColorGrading::*GET)() const>
Value getGrading(const Pipeline& pipeline) {
    return {(pipeline.getColorGrading().*GET)()};
}

template <std::uint32_t (Pipeline::*SET)(int)>
void setSwitch(Pipeline& pipeline, const Value& value) {
    (pipeline.*SET)(value[0] != 0.0F);
}

template <std::uint32_t (Pipeline::*GET)(int*)>
Value getSwitch(const Pipeline& pipeline) {
    Pipeline readable = pipeline; // methods of component interfaces are not const
    int on = 0;
    (readable.*GET)(&on);
    return {static_cast<float>(on)};
}

void setSharpness(Pipeline& pipeline, const Value& value) {
    pipeline.setSharpness(value[0]);
}

Value getSharpness(const Pipeline& pipeline) {
    Pipeline readable = pipeline;
    float strength = 0.0F;
    readable.getSharpness(&strength);
    return {strength};
}

// The ends of the gradient are its first and last table entry, exactly.
constexpr unsigned char BLACK_END = 0;
constexpr unsigned char WHITE_END = 255;

template <unsigned char END>
void setGradientEnd(Pipeline& pipeline, const Value& value) {
    ColorGrading grading = pipeline.getColorGrading();
    const Color color{value[0], value[1], value[2], 1.0F};
    const Color black = END == BLACK_END ? color : grading.getGradientMap().getColorAt(BLACK_END);
    const Color white = END == WHITE_END ? color : grading.getGradientMap().getColorAt(WHITE_END);
    grading.setGradientMap(ColorGradient(black, white));
    pipeline.setColorGrading(grading);
}

template <unsigned char END>
Value getGradientEnd(const Pipeline& pipeline) {
    const Color& color = pipeline.getColorGrading().getGradientMap().getColorAt(END);
    return {color.r, color.g, color.b};
}

template <float (ColorGrading::*GET)() const, void (ColorGrading::*SET)(float)>
constexpr Parameter gradingParameter(std::string_view name, float minimum, float maximum, std::string_view unit,
                                     std::string_view meaning) {
    return {name, Kind::NUMBER, minimum, maximum, unit, meaning, setGrading<SET>, getGrading<GET>};
}

template <std::uint32_t (Pipeline::*GET)(int*), std::uint32_t (Pipeline::*SET)(int)>
constexpr Parameter switchParameter(std::string_view name, std::string_view meaning) {
    return {name, Kind::SWITCH, 0.0F, 1.0F, "", meaning, setSwitch<SET>, getSwitch<GET>};
}

template <unsigned char END>
constexpr Parameter gradientEndParameter(std::string_view name, std::string_view meaning) {
    return {name, Kind::COLOR, 0.0F, 0.0F, "", meaning, setGradientEnd<END>, getGradientEnd<END>};
}

using Grading = ColorGrading;

constexpr Parameter PARAMETERS[] = {
    gradingParameter<&Grading::getExposure, &Grading::setExposure>("exposure", -5, 5, "stops",
                                                                   "brightness, doubled by each stop"),
    gradingParameter<&Grading::getContrast, &Grading::setContrast>("contrast", 0, 1, "",
                                                                   "power curve through middle grey; 0 is flat"),
    gradingParameter<&Grading::getHighlight, &Grading::setHighlight>("highlight", -1, 8, "",
                                                                     "steepness of the bright end; -1 flattens it"),
    gradingParameter<&Grading::getShadow, &Grading::setShadow>("shadow", -8, 1, "",
                                                               "lift of the dark end; below 0 darkens"),
    gradingParameter<&Grading::getTemperature, &Grading::setTemperature>(
        "temperature", 2500, 10500, "K", "colour of the light corrected for; lower turns bluer"),
    gradingParameter<&Grading::getHue, &Grading::setHue>("hue", -180, 180, "degrees", "turn of all hues"),
    gradingParameter<&Grading::getSaturation, &Grading::setSaturation>("saturation", 0, 2, "",
                                                                       "colourfulness; 0 gives greys"),
    gradingParameter<&Grading::getGradientMapIntensity, &Grading::setGradientMapIntensity>(
        "gradient.intensity", 0, 1, "", "how far luma is replaced by the gradient's colours"),
    gradientEndParameter<BLACK_END>("gradient.black", "gradient's colour for black, in linear light"),
    gradientEndParameter<WHITE_END>("gradient.white", "gradient's colour for white, in linear light"),
    {"sharpness", Kind::NUMBER, -1.0F, 1.0F, "", "above 0 sharpens, below 0 blurs", setSharpness, getSharpness},
    switchParameter<&Pipeline::getInversionEnabled, &Pipeline::setInversionEnabled>("invert",
                                                                                    "negative, in linear light"),
    switchParameter<&Pipeline::getFlipHorizontal, &Pipeline::setFlipHorizontal>("flipX", "mirror left and right"),
    switchParameter<&Pipeline::getFlipVertical, &Pipeline::setFlipVertical>("flipY", "mirror top and bottom"),
};

std::size_t editDistance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char letter : a) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (std::tolower(static_cast<unsigned char>(letter)) !=
                                                     std::tolower(static_cast<unsigned char>(b[j])));
            diagonal = row[j + 1];
            row[j + 1] = std::min({row[j] + 1, row[j + 1] + 1, replaced});
        }
    }
    return row.back();
}

const Parameter& nearestParameter(std::string_view name) {
    return *std::ranges::min_element(PARAMETERS, {},
                                     [&](const Parameter& known) { return editDistance(name, known.name); });
}

const Parameter& findParameter(const std::string& option, std::string_view name) {
    const auto* found = std::ranges::find(PARAMETERS, name, &Parameter::name);
    if (found != std::end(PARAMETERS)) {
        return *found;
    }
    throw UsageError(option, "there is no adjustment of this name, did you mean \"" +
                                 std::string(nearestParameter(name).name) + "\"?");
}

std::optional<float> readNumber(std::string_view text) {
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1);
    }
    double number = 0.0;
    const char* end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, number);
    // Overflow to infinity on narrowing is as little a number to work with as "inf" itself.
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
        throw UsageError(option, "the value has to be " + wanted);
    }
    return *value;
}

void applySetting(Pipeline& pipeline, const std::string& setting) {
    const std::string option = "--set " + setting;
    const std::size_t equals = setting.find('=');
    if (equals == std::string::npos) {
        throw UsageError(option, "has to be written name=value");
    }
    const Parameter& parameter = findParameter(option, std::string_view(setting).substr(0, equals));
    const Value value = readValue(option, parameter, std::string_view(setting).substr(equals + 1));
    parameter.set(pipeline, value);
    if (parameter.kind == Kind::NUMBER && (value[0] < parameter.minimum || value[0] > parameter.maximum)) {
        warn(option, "outside of " + formatNumber(parameter.minimum) + " to " + formatNumber(parameter.maximum) +
                         ", limited to " + formatValue(parameter, pipeline));
    }
}

void loadDocument(Pipeline& pipeline, const std::string& name) {
    constexpr std::size_t LARGEST_DOCUMENT = std::size_t{16} << 20; // any real one has about a thousand bytes
    InputFile file(name);
    if (!pipeline.loadParams(file.readText(LARGEST_DOCUMENT))) {
        throw Error(name, "is not a parameter document of version 1, write one with \"zqx-img params\"");
    }
    for (const Parameter& parameter : PARAMETERS) {
        for (const float element : parameter.get(pipeline)) {
            if (!std::isfinite(element)) {
                throw Error(name, "holds a number that is too large for a colour of the gradient");
            }
        }
    }
}

std::string rangeOf(const Parameter& parameter) {
    switch (parameter.kind) {
    case Kind::COLOR: return "r,g,b";
    case Kind::SWITCH: return "true, false";
    case Kind::NUMBER: break;
    }
    std::string range = formatNumber(parameter.minimum) + " to " + formatNumber(parameter.maximum);
    return parameter.unit.empty() ? range : range + " " + std::string(parameter.unit);
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
    char digits[64];
    const auto [end, failure] = std::to_chars(digits, digits + sizeof digits, value);
    return failure == std::errc() ? std::string(digits, end) : std::string();
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

std::string describeParameters() {
    const Pipeline neutral(0);
    std::string text =
        "Adjustments for --set:\n  " + padded("name", 20) + padded("range", 20) + padded("default", 9) + "meaning\n";
    for (const Parameter& parameter : PARAMETERS) {
        text += "  " + padded(parameter.name, 20) + padded(rangeOf(parameter), 20) +
                padded(formatValue(parameter, neutral), 9) + std::string(parameter.meaning) + "\n";
    }
    return text;
}

void ParameterOptions::addTo(CLI::App& command) {
    command.add_option("--params", document, "Take the adjustments from this JSON document")->type_name("FILE");
    command.add_option("--set", settings, "Set one adjustment, over --params and in order; see below")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
}

ImageProcessingPipeline ParameterOptions::makePipeline() const {
    Pipeline pipeline(0);
    if (!document.empty()) {
        loadDocument(pipeline, document);
    }
    for (const std::string& setting : settings) {
        applySetting(pipeline, setting);
    }
    return pipeline;
}

} // namespace zqx::img::app
