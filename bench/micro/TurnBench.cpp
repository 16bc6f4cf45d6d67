// Turns and flips, which move pixels and do not look at them: one format per size of pixel. Inversion and alpha, too,
// which change a picture in place.
#include "micro/Micro.h"

#include <string>

using namespace zqx::img;

namespace bench {

namespace {

void rotate(benchmark::State& state, Image::Format format, std::shared_ptr<Image> (Image::*turn)() const) {
    const auto source = getSource(state, format);
    for (auto _ : state) {
        benchmark::DoNotOptimize(((*source).*turn)());
    }
    count(state, *source, *source);
}

template <typename Change>
void inPlace(benchmark::State& state, Image::Format format, Change change) {
    const auto picture = getSource(state, format);
    for (auto _ : state) {
        change(*picture);
    }
    count(state, *picture, *picture);
}

template <typename Change>
void registerInPlace(const std::string& name, Image::Format format, Change change) {
    benchmark::RegisterBenchmark(name.c_str(), inPlace<Change>, format, change)->Apply(bothSizes);
}

void registerRotations(const std::string& formatName, Image::Format format) {
    const std::pair<const char*, std::shared_ptr<Image> (Image::*)() const> turns[] = {
        {"90", &Image::rotate90}, {"180", &Image::rotate180}, {"270", &Image::rotate270}};
    for (const auto& [angle, turn] : turns) {
        const std::string name = std::string("rotate/") + angle + "/" + formatName;
        benchmark::RegisterBenchmark(name.c_str(), rotate, format, turn)->Apply(bothSizes);
    }
}

} // namespace

void registerTurns() {
    const std::pair<const char*, Image::Format> formats[] = {{"GRAY8", Image::GRAY8},
                                                             {"RGB8", Image::RGB8},
                                                             {"RGBA8", Image::RGBA8},
                                                             {"RGB32F", Image::RGB32F},
                                                             {"RGBA32F", Image::RGBA32F}};
    for (const auto& [formatName, format] : formats) {
        registerRotations(formatName, format);
        registerInPlace(std::string("flip/horizontal/") + formatName, format, [](Image& i) { i.flipHorizontal(); });
        registerInPlace(std::string("flip/vertical/") + formatName, format, [](Image& i) { i.flipVertical(); });
    }
    for (const auto& [formatName, format] :
         {std::pair("SRGBA8", Image::SRGBA8), std::pair("RGBA32F", Image::RGBA32F)}) {
        const auto colour = static_cast<Channel>(Red | Green | Blue);
        registerInPlace(std::string("invert/") + formatName, format, [=](Image& i) { i.invert(colour); });
        registerInPlace(std::string("alpha/multiply/") + formatName, format, straight2PremultipliedAlpha);
        registerInPlace(std::string("alpha/divide/") + formatName, format, premultiplied2StraightAlpha);
    }
}

} // namespace bench
