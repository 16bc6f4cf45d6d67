/// @file
/// All adjustments of a pipeline in one table that describes itself: for settings by name, for documents, for whoever
/// explains them.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include <zqx/img/ImageProcessingPipeline.h>
#include <zqx/img/ParameterRanges.h>

namespace zqx::img {

/// One adjustment.
/// @ingroup pipeline
struct Parameter {
    /// What its values are.
    enum class Kind : std::uint8_t {
        NUMBER, ///< limited to a range
        COLOR,  ///< r, g, b in linear light, not limited
        SWITCH, ///< on or off
    };
    /// A colour's r, g, b; a number, or a switch (0 or 1), in the first element.
    using Value = std::array<float, 3>;

    std::string_view name;    ///< what people and programs call it: "gradient.intensity"
    std::string_view path;    ///< of its member in a parameter document, from the outermost object, with dots
    Kind kind;                ///< number, colour or switch
    float minimum;            ///< smallest number; 0 for other kinds
    float maximum;            ///< largest number; 1 for a switch, 0 for a colour
    Value neutral;            ///< changes nothing; what a new pipeline has
    std::string_view unit;    ///< of a number; may be empty
    std::string_view meaning; ///< in a few words, without a capital
    std::string_view details; ///< in sentences, for who wants to know more

    /// Sets it, limited to its range as by the setters of the classes; a NaN stays.
    /// @throws std::bad_alloc
    void (*set)(ImageProcessingPipeline&, const Value&);
    /// Its present value.
    Value (*get)(const ImageProcessingPipeline&);

    /// The name of its member in the innermost object of a document.
    constexpr std::string_view member() const { return path.substr(path.rfind('.') + 1); }
};

/// How the table is made.
/// @cond
namespace parameter_access {

template <float (ColorGrading::*GET)() const>
Parameter::Value getGrading(const ImageProcessingPipeline& pipeline) {
    return {(pipeline.getColorGrading().*GET)()};
}

template <void (ColorGrading::*SET)(float)>
void setGrading(ImageProcessingPipeline& pipeline, const Parameter::Value& value) {
    ColorGrading grading = pipeline.getColorGrading();
    (grading.*SET)(value[0]);
    pipeline.setColorGrading(grading);
}

template <bool (ImageProcessingPipeline::*GET)() const>
Parameter::Value getSwitch(const ImageProcessingPipeline& pipeline) {
    return {(pipeline.*GET)() ? 1.0F : 0.0F};
}

template <tov::Result (ImageProcessingPipeline::*SET)(int)>
void setSwitch(ImageProcessingPipeline& pipeline, const Parameter::Value& value) {
    (pipeline.*SET)(value[0] != 0.0F ? 1 : 0);
}

inline Parameter::Value getSharpness(const ImageProcessingPipeline& pipeline) {
    return {pipeline.getSharpness()};
}

inline void setSharpness(ImageProcessingPipeline& pipeline, const Parameter::Value& value) {
    pipeline.setSharpness(value[0]);
}

// The ends of the gradient are its first and last table entry, exactly.
inline constexpr unsigned char BLACK_END = 0;
inline constexpr unsigned char WHITE_END = 255;

template <unsigned char END>
Parameter::Value getGradientEnd(const ImageProcessingPipeline& pipeline) {
    const Color& color = pipeline.getColorGrading().getGradientMap().getColorAt(END);
    return {color.r, color.g, color.b};
}

template <unsigned char END>
void setGradientEnd(ImageProcessingPipeline& pipeline, const Parameter::Value& value) {
    ColorGrading grading = pipeline.getColorGrading();
    const Color color{value[0], value[1], value[2], 1.0F};
    const Color black = END == BLACK_END ? color : grading.getGradientMap().getColorAt(BLACK_END);
    const Color white = END == WHITE_END ? color : grading.getGradientMap().getColorAt(WHITE_END);
    grading.setGradientMap(ColorGradient(black, white));
    pipeline.setColorGrading(grading);
}

struct Words {
    std::string_view unit;
    std::string_view meaning;
    std::string_view details;
};

template <float (ColorGrading::*GET)() const, void (ColorGrading::*SET)(float)>
constexpr Parameter grading(std::string_view name, std::string_view path, const ParameterRange& range,
                            const Words& words) {
    return {name,       path,          Parameter::Kind::NUMBER, range.minimum,   range.maximum,  {range.neutral},
            words.unit, words.meaning, words.details,           setGrading<SET>, getGrading<GET>};
}

template <bool (ImageProcessingPipeline::*GET)() const, tov::Result (ImageProcessingPipeline::*SET)(int)>
constexpr Parameter toggle(std::string_view name, std::string_view path, const Words& words) {
    return {name,       path,          Parameter::Kind::SWITCH, 0.0F,           1.0F,          {0.0F},
            words.unit, words.meaning, words.details,           setSwitch<SET>, getSwitch<GET>};
}

template <unsigned char END>
constexpr Parameter gradientEnd(std::string_view name, std::string_view path, float neutral, const Words& words) {
    return {name,
            path,
            Parameter::Kind::COLOR,
            0.0F,
            0.0F,
            {neutral, neutral, neutral},
            words.unit,
            words.meaning,
            words.details,
            setGradientEnd<END>,
            getGradientEnd<END>};
}

} // namespace parameter_access
/// @endcond

/// The adjustments, one by one.
namespace parameter {

/// Brightness.
/// @ingroup pipeline
inline constexpr Parameter EXPOSURE = parameter_access::grading<&ColorGrading::getExposure, &ColorGrading::setExposure>(
    "exposure", "imageProcessing.colorGrading.exposure", range::EXPOSURE,
    {"stops", "brightness, doubled by each stop", "Multiplies linear light by 2^exposure."});

/// Contrast.
/// @ingroup pipeline
inline constexpr Parameter CONTRAST = parameter_access::grading<&ColorGrading::getContrast, &ColorGrading::setContrast>(
    "contrast", "imageProcessing.colorGrading.contrast", range::CONTRAST,
    {"", "power curve through middle grey; 0 is flat",
     "The curve goes through 0.5 in linear light; 0.5 leaves it straight, more makes it steeper."});

/// The bright end.
/// @ingroup pipeline
inline constexpr Parameter HIGHLIGHT =
    parameter_access::grading<&ColorGrading::getHighlight, &ColorGrading::setHighlight>(
        "highlight", "imageProcessing.colorGrading.highlight", range::HIGHLIGHT,
        {"", "steepness of the bright end; -1 flattens it",
         "Linear light above 0.66 moves away from 0.66 for values above 0, towards it for values below."});

/// The dark end.
/// @ingroup pipeline
inline constexpr Parameter SHADOW = parameter_access::grading<&ColorGrading::getShadow, &ColorGrading::setShadow>(
    "shadow", "imageProcessing.colorGrading.shadow", range::SHADOW,
    {"", "lift of the dark end; below 0 darkens",
     "Linear light below 0.33 moves towards 0.33 for values above 0, away from it (never below 0) for values below."});

/// White balance.
/// @ingroup pipeline
inline constexpr Parameter TEMPERATURE =
    parameter_access::grading<&ColorGrading::getTemperature, &ColorGrading::setTemperature>(
        "temperature", "imageProcessing.colorGrading.temperature", range::TEMPERATURE,
        {"K", "colour of the light corrected for; lower turns bluer",
         "Adapts from daylight of this temperature to that of 6500 K: below cools the picture, above warms it."});

/// Turn of hues.
/// @ingroup pipeline
inline constexpr Parameter HUE = parameter_access::grading<&ColorGrading::getHue, &ColorGrading::setHue>(
    "hue", "imageProcessing.colorGrading.hue", range::HUE,
    {"degrees", "turn of all hues", "Turns the hue angle in CIE LCh(uv)."});

/// Colourfulness.
/// @ingroup pipeline
inline constexpr Parameter SATURATION =
    parameter_access::grading<&ColorGrading::getSaturation, &ColorGrading::setSaturation>(
        "saturation", "imageProcessing.colorGrading.saturation", range::SATURATION,
        {"", "colourfulness; 0 gives greys",
         "Scales the distance of colours from the grey of their luma; 1 leaves them."});

/// Weight of the gradient map.
/// @ingroup pipeline
inline constexpr Parameter GRADIENT_INTENSITY =
    parameter_access::grading<&ColorGrading::getGradientMapIntensity, &ColorGrading::setGradientMapIntensity>(
        "gradient.intensity", "imageProcessing.colorGrading.gradientMap.intensity", range::GRADIENT_MAP_INTENSITY,
        {"", "how far luma is replaced by the gradient's colours",
         "Blends each colour with the gradient's colour at its luma; 0 leaves colours alone."});

/// First colour of the gradient map.
/// @ingroup pipeline
inline constexpr Parameter GRADIENT_BLACK = parameter_access::gradientEnd<parameter_access::BLACK_END>(
    "gradient.black", "imageProcessing.colorGrading.gradientMap.black", 0.0F,
    {"", "gradient's colour for black, in linear light",
     "A document has four numbers, of which the last (alpha) has no effect, and needs both ends of the gradient."});

/// Last colour of the gradient map.
/// @ingroup pipeline
inline constexpr Parameter GRADIENT_WHITE = parameter_access::gradientEnd<parameter_access::WHITE_END>(
    "gradient.white", "imageProcessing.colorGrading.gradientMap.white", 1.0F,
    {"", "gradient's colour for white, in linear light",
     "A document has four numbers, of which the last (alpha) has no effect, and needs both ends of the gradient."});

/// Sharpening and softening.
/// @ingroup pipeline
inline constexpr Parameter SHARPNESS = {
    "sharpness",
    "imageProcessing.sharpness",
    Parameter::Kind::NUMBER,
    range::SHARPNESS.minimum,
    range::SHARPNESS.maximum,
    {range::SHARPNESS.neutral},
    "",
    "above 0 sharpens, below 0 blurs",
    "Sharpens luminance (strength 5 times this, threshold 0.02), or blurs (sigma -6 times this, in pixels).",
    parameter_access::setSharpness,
    parameter_access::getSharpness};

/// The negative.
/// @ingroup pipeline
inline constexpr Parameter INVERSION = parameter_access::toggle<&ImageProcessingPipeline::isInversionEnabled,
                                                                &ImageProcessingPipeline::setInversionEnabled>(
    "invert", "imageProcessing.inversionEnabled",
    {"", "negative, in linear light", "Inverts red, green and blue, before everything else."});

/// Mirrors left and right.
/// @ingroup pipeline
inline constexpr Parameter FLIP_X = parameter_access::toggle<&ImageProcessingPipeline::isFlippedHorizontally,
                                                             &ImageProcessingPipeline::setFlipHorizontal>(
    "flipX", "imageProcessing.flipX", {"", "mirror left and right", "After everything else."});

/// Mirrors top and bottom.
/// @ingroup pipeline
inline constexpr Parameter FLIP_Y =
    parameter_access::toggle<&ImageProcessingPipeline::isFlippedVertically, &ImageProcessingPipeline::setFlipVertical>(
        "flipY", "imageProcessing.flipY", {"", "mirror top and bottom", "After everything else."});

} // namespace parameter

/// All of them, in the order in which they are explained.
/// @ingroup pipeline
inline constexpr std::array PARAMETERS = {
    parameter::EXPOSURE,       parameter::CONTRAST,
    parameter::HIGHLIGHT,      parameter::SHADOW,
    parameter::TEMPERATURE,    parameter::HUE,
    parameter::SATURATION,     parameter::GRADIENT_INTENSITY,
    parameter::GRADIENT_BLACK, parameter::GRADIENT_WHITE,
    parameter::SHARPNESS,      parameter::INVERSION,
    parameter::FLIP_X,         parameter::FLIP_Y,
};

} // namespace zqx::img
