// The layout of the chart. All lengths are in pixels.
#include "drawing/HistogramChart.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "drawing/Drawing.h"
#include "kernels/maths/ScalarMaths.h"
#include "zqx/pictures/files/Error.h"

namespace zqx::app {

using namespace pictures;
using namespace tools;

namespace {

constexpr unsigned WIDTH = 1152;
constexpr unsigned HEIGHT = 648;
constexpr double BIN_WIDTH = 4.0;
constexpr double LEFT = (WIDTH - BIN_WIDTH * HISTOGRAM_BINS) / 2;
constexpr double RIGHT = WIDTH - LEFT;
constexpr double TOP = 150.0;
constexpr double BOTTOM = 560.0;

constexpr Ink BACKGROUND{0.105, 0.105, 0.11};
constexpr Ink PLOT{0.075, 0.075, 0.08};
constexpr Ink GRID{0.21, 0.21, 0.22};
constexpr Ink TEXT{0.90, 0.90, 0.91};
constexpr Ink FAINT_TEXT{0.58, 0.58, 0.60};
constexpr Ink LUMA_INK{0.93, 0.93, 0.93};

using Align = Lettering::Align;

Ink channelInk(std::string_view name) {
    if (name == "red") {
        return {0.92, 0.24, 0.22};
    }
    if (name == "green") {
        return {0.22, 0.78, 0.30};
    }
    return name == "blue" ? Ink{0.27, 0.48, 1.0} : LUMA_INK;
}

Ink withOpacity(Ink ink, double opacity) {
    ink.opacity = opacity;
    return ink;
}

/// The middle of the bin of a stored value.
double binCenter(double code) {
    return LEFT + BIN_WIDTH * (code + 0.5);
}

void drawVertical(Canvas& canvas, double x, double from, double to, const Ink& ink) {
    const double crisp = std::floor(x) + 0.5;
    const std::array<Point, 2> ends = {{{crisp, from}, {crisp, to}}};
    canvas.drawLine(ends, 1.0, ink);
}

/// Draws vertical lines at whole stops below white, labelled above the plot, and the scale of stored values below it.
void drawScales(Canvas& canvas) {
    constexpr double GAMMA = 2.2;
    constexpr int DARKEST_STOP = 7; // labels of further stops would overlap
    canvas.fillRectangle({LEFT, TOP}, RIGHT - LEFT, BOTTOM - TOP, PLOT);
    for (int stop = 1; stop <= DARKEST_STOP; ++stop) {
        const double x = binCenter(255.0 * img::kernels::maths::exp2(-stop / GAMMA));
        drawVertical(canvas, x, TOP, BOTTOM, GRID);
        canvas.drawText({x, TOP - 10.0}, "\xE2\x88\x92" + std::to_string(stop), {13.0, FAINT_TEXT, Align::MIDDLE});
    }
    canvas.drawText({RIGHT, TOP - 10.0}, "stops below white", {13.0, FAINT_TEXT, Align::RIGHT});
    for (const int code : {0, 32, 64, 96, 128, 160, 192, 224, 255}) {
        drawVertical(canvas, binCenter(code), BOTTOM, BOTTOM + 6.0, FAINT_TEXT);
        canvas.drawText({binCenter(code), BOTTOM + 24.0}, std::to_string(code), {13.0, FAINT_TEXT, Align::MIDDLE});
    }
    canvas.drawText({WIDTH / 2.0, BOTTOM + 52.0}, "stored value", {13.0, FAINT_TEXT, Align::MIDDLE});
}

std::vector<Point> makeCurve(const std::vector<double>& bins, double limit) {
    std::vector<Point> curve;
    const auto readHeight = [&](double count) { return BOTTOM - std::min(count / limit, 1.0) * (BOTTOM - TOP - 8.0); };
    // The curve covers the whole of the outer bins, which hold the clipped values.
    curve.push_back({LEFT, readHeight(bins.front())});
    for (std::size_t code = 0; code < bins.size(); ++code) {
        curve.push_back({binCenter(static_cast<double>(code)), readHeight(bins[code])});
    }
    curve.push_back({RIGHT, readHeight(bins.back())});
    return curve;
}

std::vector<Point> closed(std::vector<Point> curve) {
    curve.push_back({RIGHT, BOTTOM});
    curve.push_back({LEFT, BOTTOM});
    return curve;
}

void drawCurves(Canvas& canvas, const Histogram& histogram) {
    std::vector<std::vector<double>> bins;
    for (const ChannelCounts& counts : histogram.present()) {
        bins.push_back(rebinned(counts, HISTOGRAM_BINS));
    }
    const double limit = drawingLimit(bins);
    for (std::size_t i = 0; i < bins.size(); ++i) {
        const std::string_view name = histogram.names()[i];
        const std::vector<Point> curve = makeCurve(bins[i], limit);
        if (name != "luma" || !histogram.color) {
            canvas.fillLight(closed(curve), withOpacity(channelInk(name), name == "luma" ? 0.45 : 0.62));
        }
        canvas.drawLine(curve, 1.5, withOpacity(channelInk(name), name == "luma" ? 0.9 : 0.75));
    }
    const std::array<Point, 2> floor = {{{LEFT, BOTTOM + 0.5}, {RIGHT, BOTTOM + 0.5}}};
    canvas.drawLine(floor, 1.0, FAINT_TEXT);
}

/// Draws the shares of clipped values in the upper right corner, which also serves as the legend.
void drawClipping(Canvas& canvas, const Histogram& histogram) {
    constexpr double CELL = 92.0;
    constexpr std::array LINES = {48.0, 74.0, 98.0};
    const double left = RIGHT - CELL * static_cast<double>(histogram.present().size());
    canvas.drawText({left, LINES[1]}, "shadows", {14.0, FAINT_TEXT, Align::RIGHT});
    canvas.drawText({left, LINES[2]}, "highlights", {14.0, FAINT_TEXT, Align::RIGHT});
    for (std::size_t i = 0; i < histogram.present().size(); ++i) {
        const ChannelCounts& counts = histogram.present()[i];
        const double x = left + CELL * static_cast<double>(i + 1);
        canvas.drawText({x, LINES[0]}, histogram.names()[i],
                        {14.0, channelInk(histogram.names()[i]), Align::RIGHT, true});
        canvas.drawText({x, LINES[1]}, percentage(counts.shadows(), histogram.pixels), {14.0, TEXT, Align::RIGHT});
        canvas.drawText({x, LINES[2]}, percentage(counts.highlights(), histogram.pixels), {14.0, TEXT, Align::RIGHT});
    }
}

/// The share of values out of range, in the channel with the most of them.
std::string describeOutOfRange(const Histogram& histogram) {
    ChannelCounts sum;
    for (const ChannelCounts& counts : histogram.present()) {
        sum.below = std::max(sum.below, counts.below);
        sum.above = std::max(sum.above, counts.above);
        sum.nan = std::max(sum.nan, counts.nan);
    }
    std::string text;
    const auto tell = [&](std::uint64_t count, const char* what) {
        if (count > 0) {
            text += (text.empty() ? "" : ", ") + percentage(count, histogram.pixels) + what;
        }
    };
    tell(sum.below, " below 0");
    tell(sum.above, " above 1");
    tell(sum.nan, " NaN");
    return text;
}

} // namespace

PixelBuffer drawChart(const Histogram& histogram, const std::string& title, const std::string& subtitle) {
    constexpr double TITLE_WIDTH = 520.0;
    Drawing drawing(WIDTH, HEIGHT, BACKGROUND);
    Canvas& canvas = drawing.canvas();
    drawScales(canvas);
    drawCurves(canvas, histogram);
    drawClipping(canvas, histogram);
    if (!canvas.drawText({LEFT, 54.0}, title, {22.0, TEXT, Align::LEFT, true, TITLE_WIDTH})) {
        warn(title, "no installed font has all characters of this name");
    }
    canvas.drawText({LEFT, 80.0}, subtitle, {14.0, FAINT_TEXT, Align::LEFT, false, TITLE_WIDTH});
    if (histogram.outOfRange) {
        canvas.drawText({LEFT, 100.0}, describeOutOfRange(histogram),
                        {14.0, FAINT_TEXT, Align::LEFT, false, TITLE_WIDTH});
    }
    PixelBuffer chart(WIDTH, HEIGHT, SampleLayout::RGB8);
    drawing.copyTo(chart.image(), 0, 0);
    return chart;
}

} // namespace zqx::app
