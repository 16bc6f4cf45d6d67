// Grading with each step alone and with all, and 3D tables.
#include "micro/Micro.h"

#include <string>
#include <vector>

#include "common/Settings.h"

using namespace zqx::img;

namespace bench {

namespace {

struct Step {
    const char* name;
    ColorGrading grading;
};

template <typename Setter, typename... Values>
ColorGrading with(Setter setter, const Values&... values) {
    ColorGrading grading;
    (grading.*setter)(values...);
    return grading;
}

ColorGrading gradientMapAlone() {
    ColorGrading grading;
    grading.setGradientMap(gradingWithoutHue().getGradientMap());
    grading.setGradientMapIntensity(0.3F);
    return grading;
}

std::vector<Step> steps() {
    return {
        {"neutral", {}},
        {"exposure", with(&ColorGrading::setExposure, 0.3F)},
        {"contrast", with(&ColorGrading::setContrast, 0.6F)},
        {"highlight", with(&ColorGrading::setHighlight, -0.2F)},
        {"shadow", with(&ColorGrading::setShadow, 0.2F)},
        {"temperature", with(&ColorGrading::setTemperature, 5500.0F)},
        {"hue", with(&ColorGrading::setHue, 20.0F)},
        {"saturation", with(&ColorGrading::setSaturation, 1.2F)},
        {"gradient", gradientMapAlone()},
        {"all_but_hue", gradingWithoutHue()},
        {"all", gradingWithHue()},
    };
}

void grade(benchmark::State& state, Image::Format format, const ColorGrading& grading) {
    const auto source = getSource(state, format);
    const auto target = getTarget(state, format);
    for (auto _ : state) {
        grading.apply(*source, *target);
    }
    count(state, *source, *target);
}

std::size_t getEntries(const benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    return size * size * size;
}

void floatTable(benchmark::State& state, const ColorGrading& grading) {
    std::vector<float> table(3 * getEntries(state));
    for (auto _ : state) {
        grading.generate3DLUT_RGB32F(static_cast<std::size_t>(state.range(0)), table.data());
    }
    count(state, getEntries(state), table.size() * sizeof(float));
}

void byteTable(benchmark::State& state, const ColorGrading& grading) {
    std::vector<unsigned char> table(3 * getEntries(state));
    for (auto _ : state) {
        grading.generate3DLUT_SRGB8(static_cast<std::size_t>(state.range(0)), table.data());
    }
    count(state, getEntries(state), table.size());
}

} // namespace

void registerGrading() {
    const std::pair<const char*, Image::Format> formats[] = {
        {"RGB32F", Image::RGB32F}, {"RGBA32F", Image::RGBA32F}, {"SRGB8", Image::SRGB8}, {"SRGBA8", Image::SRGBA8}};
    for (const Step& step : steps()) {
        for (const auto& [formatName, format] : formats) {
            const std::string name = std::string("grade/") + formatName + "/" + step.name;
            benchmark::RegisterBenchmark(name.c_str(), grade, format, step.grading)->Apply(bothSizes);
        }
    }
    const ColorGrading all = gradingWithHue();
    benchmark::RegisterBenchmark("table/RGB32F", floatTable, all)->ArgName("size")->Arg(64)->UseRealTime();
    benchmark::RegisterBenchmark("table/SRGB8", byteTable, all)->ArgName("size")->Arg(64)->UseRealTime();
}

} // namespace bench
