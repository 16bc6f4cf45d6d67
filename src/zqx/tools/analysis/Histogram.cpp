// Counting values, row by row in parallel.
#include <zqx/tools/Histogram.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <iterator>

#include <zqx/pictures/SampleLayout.h>

#include "kernels/Rows.h"
#include "zqx/pictures/codecs/StoredScale.h"

namespace zqx::tools {

using namespace pictures;

namespace {

static_assert(CODES == HISTOGRAM_BINS);

/// ITU-R BT.709. In doubles they add up to 1, so that the luma of a grey is that grey.
constexpr double RED_WEIGHT = 0.2126;
constexpr double GREEN_WEIGHT = 0.7152;
constexpr double BLUE_WEIGHT = 0.0722;

void countFloat(ChannelCounts& counts, const NearestCode& nearest, float value) {
    if (value >= 0.0F && value <= 1.0F) {
        ++counts.bins[nearest(value)];
    } else if (std::isnan(value)) {
        ++counts.nan;
    } else {
        ++(value < 0.0F ? counts.below : counts.above);
    }
}

float lumaOf(double r, double g, double b) {
    return static_cast<float>(RED_WEIGHT * r + GREEN_WEIGHT * g + BLUE_WEIGHT * b);
}

/// Where the channels are within a pixel.
struct Channels {
    std::size_t stride;
    std::size_t red;
    std::size_t green;
    std::size_t blue;
};

class Counter {
public:
    explicit Counter(const img::Image& image)
        : mImage(image), mColor(hasColor(layoutOf(image))),
          mChannels(image.isBGR() ? Channels{image.getBytePixelStride(), 2, 1, 0}
                                  : Channels{channelCount(layoutOf(image)), 0, 1, 2}) {}

    void countRow(std::size_t y, Histogram& histogram) const {
        const void* row = mImage.getRowPtr(y);
        if (mImage.hasFloatFormat()) {
            mColor ? countColors(static_cast<const float*>(row), histogram)
                   : countGreys(static_cast<const float*>(row), histogram);
        } else {
            mColor ? countColors(static_cast<const unsigned char*>(row), histogram)
                   : countGreys(static_cast<const unsigned char*>(row), histogram);
        }
    }

private:
    static void count(ChannelCounts& counts, unsigned char code) { ++counts.bins[code]; }
    void count(ChannelCounts& counts, float value) const { countFloat(counts, mNearest, value); }

    double linear(unsigned char code) const { return mDecoded[code]; }
    static double linear(float value) { return value; }

    template <typename Sample>
    void countGreys(const Sample* row, Histogram& histogram) const {
        for (std::size_t x = 0; x < mImage.getWidth(); ++x) {
            count(histogram.channels[Histogram::LUMA], row[x]);
        }
    }

    template <typename Sample>
    void countColors(const Sample* pixel, Histogram& histogram) const {
        for (std::size_t x = 0; x < mImage.getWidth(); ++x, pixel += mChannels.stride) {
            const Sample r = pixel[mChannels.red];
            const Sample g = pixel[mChannels.green];
            const Sample b = pixel[mChannels.blue];
            count(histogram.channels[Histogram::RED], r);
            count(histogram.channels[Histogram::GREEN], g);
            count(histogram.channels[Histogram::BLUE], b);
            count(histogram.channels[Histogram::LUMA], lumaOf(linear(r), linear(g), linear(b)));
        }
    }

    const img::Image& mImage;
    bool mColor;
    Channels mChannels;
    const NearestCode& mNearest = nearestCode();
    const std::array<double, CODES>& mDecoded = decodedCodes();
};

void add(ChannelCounts& sum, const ChannelCounts& part) {
    std::ranges::transform(sum.bins, part.bins, sum.bins.begin(), std::plus());
    sum.below += part.below;
    sum.above += part.above;
    sum.nan += part.nan;
}

} // namespace

Histogram countValues(const img::Image& image) {
    const Counter counter(image);
    const std::size_t rows = image.getHeight();
    std::vector<Histogram> parts(std::min(rows, img::kernels::threadCount()));
    img::kernels::forEachRow(parts.size(), [&](std::size_t part) {
        for (std::size_t y = part * rows / parts.size(); y < (part + 1) * rows / parts.size(); ++y) {
            counter.countRow(y, parts[part]);
        }
    });
    Histogram histogram;
    histogram.color = hasColor(layoutOf(image));
    histogram.pixels = std::uint64_t{image.getWidth()} * image.getHeight();
    for (const Histogram& part : parts) {
        for (std::size_t channel = 0; channel < histogram.channels.size(); ++channel) {
            add(histogram.channels[channel], part.channels[channel]);
        }
    }
    histogram.outOfRange = std::ranges::any_of(histogram.channels, [](const ChannelCounts& counts) {
        return counts.below > 0 || counts.above > 0 || counts.nan > 0;
    });
    return histogram;
}

ArrayView<std::string_view> Histogram::names() const {
    static constexpr std::array<std::string_view, 4> NAMES = {"red", "green", "blue", "luma"};
    const std::size_t first = color ? RED : LUMA;
    return {NAMES.data() + first, NAMES.size() - first};
}

std::vector<double> rebinned(const ChannelCounts& counts, std::size_t bins) {
    // With the new number as the unit, an old bin is as long as that number, and a new one as long as there are codes.
    std::vector<double> result(bins, 0.0);
    for (std::size_t code = 0; code < CODES; ++code) {
        for (std::size_t place = code * bins; place < (code + 1) * bins;) {
            const std::size_t bin = place / CODES;
            const std::size_t end = std::min((code + 1) * bins, (bin + 1) * CODES);
            result[bin] +=
                static_cast<double>(counts.bins[code]) * static_cast<double>(end - place) / static_cast<double>(bins);
            place = end;
        }
    }
    return result;
}

double drawingLimit(const std::vector<std::vector<double>>& bins) {
    constexpr double ORDINARY = 0.98;  // share of bins
    constexpr double STANDS_OUT = 1.5; // times as high as any ordinary bin
    std::vector<double> inner;
    double highest = 1.0;
    for (const std::vector<double>& channel : bins) {
        highest = std::max(highest, *std::ranges::max_element(channel));
        std::copy_if(channel.begin() + 1, channel.end() - 1, std::back_inserter(inner),
                     [](double count) { return count > 0.0; });
    }
    if (inner.empty()) {
        return highest;
    }
    const auto rank = static_cast<std::ptrdiff_t>(std::ceil(ORDINARY * static_cast<double>(inner.size()))) - 1;
    std::ranges::nth_element(inner, inner.begin() + rank);
    return std::min(STANDS_OUT * inner[static_cast<std::size_t>(rank)], *std::ranges::max_element(inner));
}

std::string percentage(std::uint64_t count, std::uint64_t pixels) {
    const double share = 100.0 * static_cast<double>(count) / static_cast<double>(pixels);
    if (count > 0 && share < 0.01) {
        return "< 0.01 %"; // a few are not none
    }
    char text[32];
    std::snprintf(text, sizeof text, "%.2f %%", share);
    return text;
}

} // namespace zqx::tools
