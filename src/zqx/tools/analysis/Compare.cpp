// Chooses the scale on which two pictures are compared; a kernel compares the pixels.
#include <zqx/tools/Compare.h>

#include <algorithm>

#include "kernels/maths/ScalarMaths.h"
#include "kernels/statistics/Distance.h"
#include "zqx/pictures/codecs/Alpha.h"

namespace zqx::tools {

using namespace pictures;

namespace {

using img::kernels::Scale;

std::size_t countChannels(const Picture& picture) {
    return channelCount(picture.pixels.layout());
}

Scale commonScale(const Picture& a, const Picture& b) {
    switch (std::max(bitsPerChannel(a.stored), bitsPerChannel(b.stored))) {
    case 8: return Scale::CODES_8;
    case 16: return Scale::CODES_16;
    default: return Scale::LIGHT;
    }
}

} // namespace

bool isComparable(const Picture& a, const Picture& b) {
    return a.width() == b.width() && a.height() == b.height() && countChannels(a) == countChannels(b);
}

void alignAlpha(Picture& a, Picture& b) {
    if (a.alpha != b.alpha) {
        straightenAlpha(a);
        straightenAlpha(b);
    }
}

Comparison compare(const Picture& a, const Picture& b) {
    const Scale scale = commonScale(a, b);
    const double white = img::kernels::white(scale);
    const img::kernels::Distances distances = img::kernels::measureDistances(a.image(), b.image(), scale);
    Comparison comparison;
    comparison.scale = {scale != Scale::LIGHT, white};
    comparison.pixels = std::uint64_t{a.width()} * a.height();
    comparison.differingPixels = distances.differingPixels;
    comparison.largest = distances.largest;
    comparison.x = static_cast<unsigned>(distances.x);
    comparison.y = static_cast<unsigned>(distances.y);
    comparison.channel = distances.channel;
    const double numbers = static_cast<double>(comparison.pixels) * static_cast<double>(countChannels(a));
    comparison.mean = distances.sum / numbers;
    comparison.psnr = -10.0 * img::kernels::maths::log10(distances.sumOfSquares / numbers / (white * white));
    return comparison;
}

PixelBuffer paintDifferences(const Picture& a, const Picture& b, const Comparison& comparison) {
    PixelBuffer pixels(a.width(), a.height(), countChannels(a) == 1 ? SampleLayout::GRAY8 : SampleLayout::RGB8);
    img::kernels::paintDistances(a.image(), b.image(), commonScale(a, b), comparison.largest, pixels.image());
    return pixels;
}

} // namespace zqx::tools
