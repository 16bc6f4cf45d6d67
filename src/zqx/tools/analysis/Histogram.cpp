// Counting of values by a kernel, and preparation of the counts for drawing.
#include <zqx/tools/Histogram.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include <zqx/pictures/SampleLayout.h>

#include "kernels/statistics/ValueCounts.h"
#include "zqx/text/Numbers.h"

namespace zqx::tools {

Histogram countValues(const img::Image& image) {
    const img::kernels::ValueCounts counted = img::kernels::countValues(image);
    Histogram histogram;
    histogram.color = pictures::hasColor(pictures::getLayout(image));
    histogram.pixels = std::uint64_t{image.getWidth()} * image.getHeight();
    for (std::size_t channel = 0; channel < histogram.channels.size(); ++channel) {
        const img::kernels::ChannelCounts& counts = counted.channels[channel];
        histogram.channels[channel] = {counts.bins, counts.below, counts.above, counts.nan};
        histogram.outOfRange |= counts.below > 0 || counts.above > 0 || counts.nan > 0;
    }
    return histogram;
}

ArrayView<std::string_view> Histogram::names() const {
    static constexpr std::array<std::string_view, 4> NAMES = {"red", "green", "blue", "luma"};
    const std::size_t first = color ? RED : LUMA;
    return {NAMES.data() + first, NAMES.size() - first};
}

std::vector<double> rebinned(const ChannelCounts& counts, std::size_t bins) {
    // In units of 1 / (HISTOGRAM_BINS * bins), an old bin is bins units wide and a new one HISTOGRAM_BINS units.
    std::vector<double> result(bins, 0.0);
    for (std::size_t code = 0; code < HISTOGRAM_BINS; ++code) {
        for (std::size_t place = code * bins; place < (code + 1) * bins;) {
            const std::size_t bin = place / HISTOGRAM_BINS;
            const std::size_t end = std::min((code + 1) * bins, (bin + 1) * HISTOGRAM_BINS);
            result[bin] +=
                static_cast<double>(counts.bins[code]) * static_cast<double>(end - place) / static_cast<double>(bins);
            place = end;
        }
    }
    return result;
}

double drawingLimit(const std::vector<std::vector<double>>& bins) {
    constexpr double ORDINARY = 0.98;  // share of bins
    constexpr double STANDS_OUT = 1.5; // more than this times the height of ordinary bins
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
        return "< 0.01 %";
    }
    return text::fixed(share, 2) + " %";
}

} // namespace zqx::tools
