// The table of adjustments. All that is said about one, anywhere, is said here.
#include "zqx/tools/parameters/ParameterTable.h"

#include "zqx/text/Numbers.h"
#include "zqx/text/Width.h"

namespace zqx::tools {

namespace {

using Pipeline = img::ImageProcessingPipeline;
using Kind = Parameter::Kind;
using Value = Parameter::Value;

template <void (img::ColorGrading::*SET)(float)>
void setGrading(Pipeline& pipeline, const Value& value) {
    img::ColorGrading grading = pipeline.getColorGrading();
    (grading.*SET)(value[0]);
    pipeline.setColorGrading(grading);
}

template <float (img::ColorGrading::*GET)() const>
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
    img::ColorGrading grading = pipeline.getColorGrading();
    const img::Color color{value[0], value[1], value[2], 1.0F};
    const img::Color black = END == BLACK_END ? color : grading.getGradientMap().getColorAt(BLACK_END);
    const img::Color white = END == WHITE_END ? color : grading.getGradientMap().getColorAt(WHITE_END);
    grading.setGradientMap(img::ColorGradient(black, white));
    pipeline.setColorGrading(grading);
}

template <unsigned char END>
Value getGradientEnd(const Pipeline& pipeline) {
    const img::Color& color = pipeline.getColorGrading().getGradientMap().getColorAt(END);
    return {color.r, color.g, color.b};
}

template <float (img::ColorGrading::*GET)() const, void (img::ColorGrading::*SET)(float)>
constexpr Parameter grading(std::string_view name, std::string_view path, float minimum, float maximum,
                            std::string_view unit, std::string_view meaning, std::string_view details) {
    return {name, path, Kind::NUMBER, minimum, maximum, unit, meaning, details, setGrading<SET>, getGrading<GET>};
}

template <std::uint32_t (Pipeline::*GET)(int*), std::uint32_t (Pipeline::*SET)(int)>
constexpr Parameter toggle(std::string_view name, std::string_view path, std::string_view meaning,
                           std::string_view details) {
    return {name, path, Kind::SWITCH, 0.0F, 1.0F, "", meaning, details, setSwitch<SET>, getSwitch<GET>};
}

template <unsigned char END>
constexpr Parameter gradientEnd(std::string_view name, std::string_view path, std::string_view meaning,
                                std::string_view details) {
    return {name, path, Kind::COLOR, 0.0F, 0.0F, "", meaning, details, setGradientEnd<END>, getGradientEnd<END>};
}

using Grading = img::ColorGrading;

constexpr Parameter PARAMETERS[] = {
    grading<&Grading::getExposure, &Grading::setExposure>("exposure", "imageProcessing.colorGrading.exposure", -5, 5,
                                                          "stops", "brightness, doubled by each stop",
                                                          "Multiplies linear light by 2^exposure."),
    grading<&Grading::getContrast, &Grading::setContrast>(
        "contrast", "imageProcessing.colorGrading.contrast", 0, 1, "", "power curve through middle grey; 0 is flat",
        "The curve goes through 0.5 in linear light; 0.5 leaves it straight, more makes it steeper."),
    grading<&Grading::getHighlight, &Grading::setHighlight>(
        "highlight", "imageProcessing.colorGrading.highlight", -1, 8, "", "steepness of the bright end; -1 flattens it",
        "Linear light above 0.66 moves away from 0.66 for values above 0, towards it for values below."),
    grading<&Grading::getShadow, &Grading::setShadow>(
        "shadow", "imageProcessing.colorGrading.shadow", -8, 1, "", "lift of the dark end; below 0 darkens",
        "Linear light below 0.33 moves towards 0.33 for values above 0, away from it (never below 0) for values "
        "below."),
    grading<&Grading::getTemperature, &Grading::setTemperature>(
        "temperature", "imageProcessing.colorGrading.temperature", 2500, 10500, "K",
        "colour of the light corrected for; lower turns bluer",
        "Adapts from daylight of this temperature to that of 6500 K: below cools the picture, above warms it."),
    grading<&Grading::getHue, &Grading::setHue>("hue", "imageProcessing.colorGrading.hue", -180, 180, "degrees",
                                                "turn of all hues", "Turns the hue angle in CIE LCh(uv)."),
    grading<&Grading::getSaturation, &Grading::setSaturation>(
        "saturation", "imageProcessing.colorGrading.saturation", 0, 2, "", "colourfulness; 0 gives greys",
        "Scales the distance of colours from the grey of their luma; 1 leaves them."),
    grading<&Grading::getGradientMapIntensity, &Grading::setGradientMapIntensity>(
        "gradient.intensity", "imageProcessing.colorGrading.gradientMap.intensity", 0, 1, "",
        "how far luma is replaced by the gradient's colours",
        "Blends each colour with the gradient's colour at its luma; 0 leaves colours alone."),
    gradientEnd<BLACK_END>("gradient.black", "imageProcessing.colorGrading.gradientMap.black",
                           "gradient's colour for black, in linear light",
                           "A document has four numbers, of which the last (alpha) has no effect, and needs both ends "
                           "of the gradient."),
    gradientEnd<WHITE_END>("gradient.white", "imageProcessing.colorGrading.gradientMap.white",
                           "gradient's colour for white, in linear light",
                           "A document has four numbers, of which the last (alpha) has no effect, and needs both ends "
                           "of the gradient."),
    {"sharpness", "imageProcessing.sharpness", Kind::NUMBER, -1.0F, 1.0F, "", "above 0 sharpens, below 0 blurs",
     "Sharpens luminance (strength 5 times this, threshold 0.02), or blurs (sigma -6 times this, in pixels).",
     setSharpness, getSharpness},
    toggle<&Pipeline::getInversionEnabled, &Pipeline::setInversionEnabled>(
        "invert", "imageProcessing.inversionEnabled", "negative, in linear light",
        "Inverts red, green and blue, before everything else."),
    toggle<&Pipeline::getFlipHorizontal, &Pipeline::setFlipHorizontal>(
        "flipX", "imageProcessing.flipX", "mirror left and right", "After everything else."),
    toggle<&Pipeline::getFlipVertical, &Pipeline::setFlipVertical>("flipY", "imageProcessing.flipY",
                                                                   "mirror top and bottom", "After everything else."),
};

} // namespace

std::span<const Parameter> parameters() {
    return PARAMETERS;
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
    const Pipeline neutral(0);
    std::string text = "Adjustments for --set:\n  " + text::padded("name", 20) + text::padded("range", 20) +
                       text::padded("default", 9) + "meaning\n";
    for (const Parameter& parameter : PARAMETERS) {
        text += "  " + text::padded(parameter.name, 20) + text::padded(describeRange(parameter), 20) +
                text::padded(formatValue(parameter, neutral), 9) + std::string(parameter.meaning) + "\n";
    }
    return text;
}

} // namespace zqx::tools
