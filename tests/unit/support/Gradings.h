// Grading settings for the oracle and the library alike, and the named sets that the grading tests run.
#pragma once

#include <limits>
#include <string>
#include <vector>

#include <zqx/img/ColorGrading.h>

#include "oracle/Grade.h"

namespace test {

inline zqx::img::Color getColor(const oracle::Values& c) {
    return {c.r, c.g, c.b, c.a};
}

inline zqx::img::ColorGradient getGradient(const std::vector<oracle::Values>& stops) {
    std::vector<zqx::img::Color> colors;
    for (const oracle::Values& stop : stops) {
        colors.push_back(getColor(stop));
    }
    return zqx::img::ColorGradient(colors);
}

inline zqx::img::ColorGrading makeGrading(const oracle::Settings& s) {
    zqx::img::ColorGrading grading;
    grading.setExposure(s.exposure);
    grading.setContrast(s.contrast);
    grading.setHighlight(s.highlight);
    grading.setShadow(s.shadow);
    grading.setTemperature(s.temperature);
    grading.setHue(s.hue);
    grading.setSaturation(s.saturation);
    grading.setGradientMapIntensity(s.intensity);
    grading.setGradientMap(getGradient(s.stops));
    return grading;
}

struct NamedSettings {
    std::string name;
    oracle::Settings settings;
};

template <typename Change>
NamedSettings named(std::string name, Change change) {
    NamedSettings result{std::move(name), {}};
    change(result.settings);
    return result;
}

inline const std::vector<oracle::Values>& sunsetStops() {
    static const std::vector<oracle::Values> STOPS = {
        {0.02F, 0.0F, 0.15F, 1.0F}, {0.8F, 0.2F, 0.1F, 0.5F}, {1.2F, 0.9F, -0.1F, 1.0F}};
    return STOPS;
}

/// Every setting but contrast and hue, alone at both ends and in between, and all of them together. These sets use
/// nothing but single-precision sums, products and comparisons: results are exact.
inline std::vector<NamedSettings> exactSettings() {
    using S = oracle::Settings;
    return {
        named("neutral", [](S&) {}),
        named("exposure -5", [](S& s) { s.exposure = -5.0F; }),
        named("exposure 5", [](S& s) { s.exposure = 5.0F; }),
        named("exposure 0.7", [](S& s) { s.exposure = 0.7F; }),
        named("highlight -1", [](S& s) { s.highlight = -1.0F; }),
        named("highlight 8", [](S& s) { s.highlight = 8.0F; }),
        named("shadow -8", [](S& s) { s.shadow = -8.0F; }),
        named("shadow 1", [](S& s) { s.shadow = 1.0F; }),
        named("temperature 2500", [](S& s) { s.temperature = 2500.0F; }),
        named("temperature 7000", [](S& s) { s.temperature = 7000.0F; }),
        named("temperature 10500", [](S& s) { s.temperature = 10500.0F; }),
        named("saturation 0", [](S& s) { s.saturation = 0.0F; }),
        named("saturation 2", [](S& s) { s.saturation = 2.0F; }),
        named("gradient 1", [](S& s) { s.intensity = 1.0F; }),
        named("gradient of three stops 0.4",
              [](S& s) {
                  s.intensity = 0.4F;
                  s.stops = sunsetStops();
              }),
        named("all but contrast and hue",
              [](S& s) { s = {0.4F, 0.5F, -0.3F, 0.25F, 5200.0F, 0.0F, 1.3F, 0.35F, sunsetStops()}; }),
    };
}

/// One setting at a time is not a number.
inline std::vector<NamedSettings> nanSettings() {
    using S = oracle::Settings;
    constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
    return {
        named("exposure NaN", [](S& s) { s.exposure = NOT_A_NUMBER; }),
        named("contrast NaN", [](S& s) { s.contrast = NOT_A_NUMBER; }),
        named("highlight NaN", [](S& s) { s.highlight = NOT_A_NUMBER; }),
        named("shadow NaN", [](S& s) { s.shadow = NOT_A_NUMBER; }),
        named("temperature NaN", [](S& s) { s.temperature = NOT_A_NUMBER; }),
        named("hue NaN", [](S& s) { s.hue = NOT_A_NUMBER; }),
        named("saturation NaN", [](S& s) { s.saturation = NOT_A_NUMBER; }),
        named("gradient NaN", [](S& s) { s.intensity = NOT_A_NUMBER; }),
    };
}

/// Sets that raise to powers or turn in polar coordinates: results are near, not exact.
inline std::vector<NamedSettings> curvedSettings() {
    using S = oracle::Settings;
    return {
        named("contrast 0", [](S& s) { s.contrast = 0.0F; }),
        named("contrast 0.3", [](S& s) { s.contrast = 0.3F; }),
        named("contrast 0.7", [](S& s) { s.contrast = 0.7F; }),
        named("contrast 1", [](S& s) { s.contrast = 1.0F; }),
        named("hue -180", [](S& s) { s.hue = -180.0F; }),
        named("hue 35", [](S& s) { s.hue = 35.0F; }),
        named("hue 180", [](S& s) { s.hue = 180.0F; }),
        named("everything", [](S& s) { s = {0.3F, 0.6F, -0.4F, 0.3F, 5600.0F, 25.0F, 1.2F, 0.3F, sunsetStops()}; }),
    };
}

} // namespace test
