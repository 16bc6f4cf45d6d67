// Blur over a range of sigmas, and sharpening.
#include "micro/Micro.h"

#include <string>

#include <zqx/img/GaussianBlur.h>
#include <zqx/img/Sharpen.h>

using namespace zqx::img;

namespace bench {

namespace {

void run(benchmark::State& state, Filter& filter, Image::Format format) {
    const auto source = getSource(state, format);
    const auto target = getTarget(state, format);
    filter.setSrcImage(Image(*source)); // views: the pictures stay ours
    filter.setOutput(Image(*target));
    for (auto _ : state) {
        filter.execute();
    }
    count(state, *source, *target);
}

void blur(benchmark::State& state, Image::Format format, float sigma) {
    GaussianBlur filter;
    filter.setSigma(sigma);
    run(state, filter, format);
}

void sharpen(benchmark::State& state, Image::Format format, float radius) {
    Sharpen filter;
    filter.setRadius(radius);
    filter.setStrength(1.5F);
    run(state, filter, format);
}

std::string getName(const char* work, const char* format, float size) {
    return std::string(work) + "/" + format + "/" + std::to_string(size).substr(0, 3);
}

} // namespace

void registerFilters() {
    const std::pair<const char*, Image::Format> formats[] = {{"GRAY32F", Image::GRAY32F},
                                                             {"RGB32F", Image::RGB32F},
                                                             {"RGBA32F", Image::RGBA32F},
                                                             {"SRGB8", Image::SRGB8},
                                                             {"SRGBA8", Image::SRGBA8}};
    for (const auto& [formatName, format] : formats) {
        for (const float sigma : {0.5F, 1.0F, 2.0F, 3.0F, 6.0F}) {
            benchmark::RegisterBenchmark(getName("blur", formatName, sigma).c_str(), blur, format, sigma)
                ->Apply(bothSizes);
        }
        for (const float radius : {1.0F, 3.0F}) {
            benchmark::RegisterBenchmark(getName("sharpen", formatName, radius).c_str(), sharpen, format, radius)
                ->Apply(bothSizes);
        }
    }
}

} // namespace bench
