#include "golden/Looks.h"

#include <limits>

namespace golden {

namespace {

using zqx::img::Color;
using zqx::img::ColorGradient;
using zqx::img::ColorGrading;

struct Parameter {
    const char* name;
    void (ColorGrading::*set)(float);
    std::vector<const char*> values; ///< as they stand in names
};

const std::vector<Parameter>& parameters() {
    static const std::vector<Parameter> PARAMETERS = {
        {"exposure", &ColorGrading::setExposure, {"-5", "-1.3", "0.7", "5"}},
        {"contrast", &ColorGrading::setContrast, {"0", "0.05", "0.3", "0.45", "0.6", "0.75", "0.9", "1"}},
        {"highlight", &ColorGrading::setHighlight, {"-1", "-0.3", "0.8", "8"}},
        {"shadow", &ColorGrading::setShadow, {"-8", "-0.5", "0.4", "1"}},
        {"temperature", &ColorGrading::setTemperature, {"2500", "4100", "6499.99", "7000", "7000.5", "10500"}},
        {"hue", &ColorGrading::setHue, {"-180", "-77", "0.5", "35", "120", "180"}},
        {"saturation", &ColorGrading::setSaturation, {"0", "0.4", "1.6", "2"}},
        {"gradient", &ColorGrading::setGradientMapIntensity, {"0.35", "1"}},
    };
    return PARAMETERS;
}

ColorGradient sunset() {
    return ColorGradient(
        std::vector<Color>{{0.02F, 0.0F, 0.15F, 1.0F}, {0.8F, 0.2F, 0.1F, 0.5F}, {1.2F, 0.9F, -0.1F, 1.0F}});
}

/// Stops that differ in all channels; with 42 of them the last but one boundary falls short of the table's end.
ColorGradient manyStops(int count) {
    std::vector<Color> stops;
    for (int i = 0; i < count; ++i) {
        const auto share = [=](int step) { return static_cast<float>(i * step % count) / static_cast<float>(count); };
        stops.push_back({share(7), share(11), share(5), 1.0F});
    }
    return ColorGradient(stops);
}

Look gradientLook(const std::string& name, const ColorGradient& gradient) {
    Look look{"gradient=" + name, {}};
    look.grading.setGradientMap(gradient);
    look.grading.setGradientMapIntensity(0.8F);
    return look;
}

struct Mixture {
    const char* name;
    float exposure;
    float contrast;
    float highlight;
    float shadow;
    float temperature;
    float hue;
    float saturation;
    float gradient;
};

constexpr Mixture MIXTURES[] = {
    {"mild", 0.3F, 0.6F, -0.4F, 0.3F, 5600.0F, 25.0F, 1.2F, 0.3F},
    {"strong", -1.7F, 0.9F, 3.0F, -2.0F, 3300.0F, -140.0F, 1.9F, 0.75F},
    {"straight", 0.4F, 0.5F, -0.3F, 0.25F, 5200.0F, 0.0F, 1.3F, 0.35F}, // neither a power nor a turn
    {"cold", 0.0F, 0.45F, 0.0F, 0.0F, 9500.0F, 0.0F, 0.8F, 0.0F},
    {"turned", 1.1F, 0.5F, 0.0F, 0.5F, 6500.0F, 91.0F, 1.0F, 0.0F},
};

} // namespace

std::vector<Look> singleLooks() {
    std::vector<Look> looks = {{"neutral", {}}};
    for (const Parameter& parameter : parameters()) {
        for (const char* value : parameter.values) {
            Look look{std::string(parameter.name) + "=" + value, {}};
            (look.grading.*parameter.set)(std::stof(value));
            looks.push_back(look);
        }
    }
    looks.push_back(gradientLook("sunset", sunset()));
    for (const int count : {4, 5, 42, 256}) {
        looks.push_back(gradientLook(std::to_string(count) + "stops", manyStops(count)));
    }
    return looks;
}

std::vector<Look> nanLooks() {
    std::vector<Look> looks;
    for (const Parameter& parameter : parameters()) {
        Look look{std::string(parameter.name) + "=nan", {}};
        (look.grading.*parameter.set)(std::numeric_limits<float>::quiet_NaN());
        looks.push_back(look);
    }
    return looks;
}

std::vector<Look> mixedLooks() {
    std::vector<Look> looks;
    for (const Mixture& mixture : MIXTURES) {
        Look look{mixture.name, {}};
        look.grading.setExposure(mixture.exposure);
        look.grading.setContrast(mixture.contrast);
        look.grading.setHighlight(mixture.highlight);
        look.grading.setShadow(mixture.shadow);
        look.grading.setTemperature(mixture.temperature);
        look.grading.setHue(mixture.hue);
        look.grading.setSaturation(mixture.saturation);
        look.grading.setGradientMapIntensity(mixture.gradient);
        look.grading.setGradientMap(sunset());
        looks.push_back(look);
    }
    return looks;
}

} // namespace golden
