// Counting values, row by row in parallel.
#include "zqx/tools/analysis/Histogram.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>

#include <omp.h>

#include "zqx/text/Numbers.h"

namespace zqx::tools {

using namespace pictures;

namespace {

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
struct Layout {
    std::size_t stride;
    std::size_t red;
    std::size_t green;
    std::size_t blue;
};

class Counter {
public:
    Counter(const img::Image& image, Form form)
        : mImage(image), mForm(form),
          mLayout(isFloat(form) ? Layout{image.getBytePixelStride() / sizeof(float), 0, 1, 2}
                                : Layout{image.getBytePixelStride(), FI_RGBA_RED, FI_RGBA_GREEN, FI_RGBA_BLUE}) {}

    void countRow(std::size_t y, Histogram& histogram) const {
        const void* row = mImage.getRowPtr(y);
        if (isFloat(mForm)) {
            hasColor(mForm) ? countColors(static_cast<const float*>(row), histogram)
                            : countGreys(static_cast<const float*>(row), histogram);
        } else {
            hasColor(mForm) ? countColors(static_cast<const BYTE*>(row), histogram)
                            : countGreys(static_cast<const BYTE*>(row), histogram);
        }
    }

private:
    static void count(ChannelCounts& counts, BYTE code) { ++counts.bins[code]; }
    void count(ChannelCounts& counts, float value) const { countFloat(counts, mNearest, value); }

    double linear(BYTE code) const { return mDecoded[code]; }
    static double linear(float value) { return value; }

    template <typename Sample>
    void countGreys(const Sample* row, Histogram& histogram) const {
        for (std::size_t x = 0; x < mImage.getWidth(); ++x) {
            count(histogram.channels[Histogram::LUMA], row[x]);
        }
    }

    template <typename Sample>
    void countColors(const Sample* pixel, Histogram& histogram) const {
        for (std::size_t x = 0; x < mImage.getWidth(); ++x, pixel += mLayout.stride) {
            const Sample r = pixel[mLayout.red];
            const Sample g = pixel[mLayout.green];
            const Sample b = pixel[mLayout.blue];
            count(histogram.channels[Histogram::RED], r);
            count(histogram.channels[Histogram::GREEN], g);
            count(histogram.channels[Histogram::BLUE], b);
            count(histogram.channels[Histogram::LUMA], lumaOf(linear(r), linear(g), linear(b)));
        }
    }

    const img::Image& mImage;
    Form mForm;
    Layout mLayout;
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

Histogram countValues(const Bitmap& bitmap, Form form) {
    const img::Image image = viewOf(bitmap, form);
    const Counter counter(image, form);
#if defined(__SANITIZE_THREAD__) // it does not see how OpenMP synchronises
    const std::size_t threads = 1;
#else
    const auto threads = static_cast<std::size_t>(omp_get_max_threads());
#endif
    std::vector<Histogram> parts(threads);
    const auto rows = static_cast<std::int64_t>(image.getHeight()); // OpenMP 2.0 wants a signed index
#if !defined(__SANITIZE_THREAD__)
#pragma omp parallel for schedule(static)
#endif
    for (std::int64_t y = 0; y < rows; ++y) {
        counter.countRow(static_cast<std::size_t>(y), parts[static_cast<std::size_t>(omp_get_thread_num())]);
    }
    Histogram histogram;
    histogram.color = hasColor(form);
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

std::span<const std::string_view> Histogram::names() const {
    static constexpr std::array<std::string_view, 4> NAMES = {"red", "green", "blue", "luma"};
    return std::span(NAMES).subspan(color ? std::size_t{RED} : std::size_t{LUMA});
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

double drawingLimit(std::span<const std::vector<double>> bins) {
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
    return text::fixed(share, 2) + " %";
}

} // namespace zqx::tools
