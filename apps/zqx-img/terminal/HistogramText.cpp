// A panel of bars for each channel, luma first and tallest, above a common axis with the stored values.
#include "terminal/HistogramText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "zqx/text/Width.h"

namespace zqx::app {

using namespace tools;

namespace {

constexpr std::size_t GUTTER = 7; // the width of "green" and a gap
constexpr std::size_t LUMA_ROWS = 7;
constexpr std::size_t COLOR_ROWS = 3;

/// The characters for the levels of a bar.
struct Bars {
    std::vector<std::string_view> levels; // the first is empty, the last is full
    std::string_view axis;
};

const Bars& selectBars(const TextStyle& style) {
    static const Bars UNICODE = {{" ", "\xE2\x96\x81", "\xE2\x96\x82", "\xE2\x96\x83", "\xE2\x96\x84", "\xE2\x96\x85",
                                  "\xE2\x96\x86", "\xE2\x96\x87", "\xE2\x96\x88"},
                                 "\xE2\x94\x80"};
    static const Bars ASCII = {{" ", ".", ":", "#"}, "-"};
    return style.unicode ? UNICODE : ASCII;
}

std::string inColor(std::string_view name, std::string text, const TextStyle& style) {
    if (!style.color) {
        return text;
    }
    const char* code = name == "red" ? "91" : name == "green" ? "92" : name == "blue" ? "94" : "37";
    return "\x1b[" + std::string(code) + "m" + text + "\x1b[0m";
}

/// Draws the bars of a channel. Every bin that is not empty is visible.
std::string panel(std::string_view name, const std::vector<double>& bins, double limit, std::size_t rows,
                  const TextStyle& style) {
    const Bars& bars = selectBars(style);
    const std::size_t full = bars.levels.size() - 1;
    std::string text;
    for (std::size_t row = rows; row-- > 0;) {
        std::string line;
        for (const double count : bins) {
            const double height = std::min(count / limit, 1.0) * static_cast<double>(rows * full);
            const auto level = static_cast<std::size_t>(count > 0.0 ? std::max(1.0, std::round(height)) : 0.0);
            line += bars.levels[std::clamp(level, row * full, (row + 1) * full) - row * full];
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += text::padded(row == rows - 1 ? name : "", line.empty() && row != rows - 1 ? 0 : GUTTER) +
                (line.empty() ? "" : inColor(name, line, style)) + "\n";
    }
    return text;
}

std::string axis(std::size_t columns, const TextStyle& style) {
    std::string line(GUTTER, ' ');
    for (std::size_t i = 0; i < columns; ++i) {
        line += selectBars(style).axis;
    }
    constexpr std::size_t ROOM_FOR_FIVE = 32;
    const std::vector<std::size_t> values = columns < ROOM_FOR_FIVE ? std::vector<std::size_t>{0, 128, 255}
                                                                    : std::vector<std::size_t>{0, 64, 128, 192, 255};
    std::string numbers(GUTTER + columns, ' ');
    for (const std::size_t value : values) {
        const std::string number = std::to_string(value);
        const std::size_t column = GUTTER + (2 * value + 1) * columns / (2 * HISTOGRAM_BINS);
        const std::size_t start = std::clamp(column - std::min(column, number.size() / 2), GUTTER,
                                             GUTTER + columns - std::min(columns, number.size()));
        numbers.replace(start, number.size(), number);
    }
    return line + "\n" + numbers + "\n";
}

/// A table of the clipped values, with a heading and one line for each channel.
std::string clippingTable(const Histogram& histogram) {
    constexpr std::size_t CELL = 13;
    const auto row = [&](std::string_view name, const std::vector<std::string>& cells) {
        std::string line = text::padded(name, GUTTER);
        for (std::size_t i = 0; i < (histogram.outOfRange ? cells.size() : 2); ++i) {
            line += text::padded(cells[i], CELL, text::Align::RIGHT);
        }
        return line + "\n";
    };
    std::string text = row("", {"shadows", "highlights", "below 0", "above 1", "NaN"});
    const auto line = [&](std::size_t i) {
        const ChannelCounts& counts = histogram.present()[i];
        const auto share = [&](std::uint64_t count) { return percentage(count, histogram.pixels); };
        text += row(histogram.names()[i], {share(counts.shadows()), share(counts.highlights()), share(counts.below),
                                           share(counts.above), share(counts.nan)});
    };
    line(histogram.present().size() - 1); // luma, as in the drawing
    for (std::size_t i = 0; i + 1 < histogram.present().size(); ++i) {
        line(i);
    }
    return text;
}

} // namespace

std::string drawAsText(const Histogram& histogram, const std::string& title, const TextStyle& style) {
    constexpr std::size_t NARROWEST = 16;
    const std::size_t columns = std::clamp(style.columns - std::min(style.columns, GUTTER), NARROWEST, HISTOGRAM_BINS);
    std::vector<std::vector<double>> bins;
    for (const ChannelCounts& counts : histogram.present()) {
        bins.push_back(rebinned(counts, columns));
    }
    const std::vector<std::vector<double>> colors(bins.begin(), bins.end() - 1);
    std::string text = title + "\n\n" + panel("luma", bins.back(), drawingLimit({bins.back()}), LUMA_ROWS, style);
    for (std::size_t i = 0; i < colors.size(); ++i) {
        text += panel(histogram.names()[i], colors[i], drawingLimit(colors), COLOR_ROWS, style);
    }
    return text + axis(columns, style) + "\n" + clippingTable(histogram);
}

} // namespace zqx::app
