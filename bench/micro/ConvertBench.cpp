// Conversion between pixel formats: every pair.
#include "micro/Micro.h"

#include <string>

using zqx::img::Image;

namespace bench {

namespace {

constexpr const char* NAMES[] = {"GRAY8", "SGRAY8", "GRAY32F", "RGB8",    "SRGB8", "RGB32F",
                                 "SBGR8", "RGBA8",  "SRGBA8",  "RGBA32F", "SBGRA8"};
constexpr std::uint32_t FORMAT_COUNT = 11;

void convert(benchmark::State& state, Image::Format from, Image::Format to) {
    const auto source = getSource(state, from);
    const auto target = getTarget(state, to);
    for (auto _ : state) {
        target->convertFrom(*source);
    }
    count(state, *source, *target);
}

} // namespace

void registerConversions() {
    for (std::uint32_t from = 0; from < FORMAT_COUNT; ++from) {
        for (std::uint32_t to = 0; to < FORMAT_COUNT; ++to) {
            const std::string name = std::string("convert/") + NAMES[from] + "/" + NAMES[to];
            benchmark::RegisterBenchmark(name.c_str(), convert, static_cast<Image::Format>(from),
                                         static_cast<Image::Format>(to))
                ->Apply(bothSizes);
        }
    }
}

} // namespace bench
