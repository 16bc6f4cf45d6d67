// What histograms are drawn from, and how they look in characters.
#include "terminal/HistogramText.h"

#include <numeric>

#include <gtest/gtest.h>

namespace zqx::app {

using namespace tools;

namespace {

ChannelCounts ramp() {
    ChannelCounts counts;
    std::iota(counts.bins.begin(), counts.bins.end(), std::uint64_t{1});
    return counts;
}

Histogram greyHistogram(std::size_t code, std::uint64_t count) {
    Histogram histogram;
    histogram.channels[Histogram::LUMA].bins[code] = count;
    histogram.pixels = count;
    return histogram;
}

} // namespace

TEST(HistogramTest, AsManyBinsAsCodesAreTheCodes) {
    const std::vector<double> bins = rebinned(ramp(), HISTOGRAM_BINS);
    EXPECT_EQ(bins.front(), 1.0);
    EXPECT_EQ(bins[100], 101.0);
    EXPECT_EQ(bins.back(), 256.0);
}

TEST(HistogramTest, FewerBinsShareTheCodesBetweenThem) {
    const std::vector<double> bins = rebinned(ramp(), 96); // 2 2/3 codes each
    EXPECT_DOUBLE_EQ(bins[0], 1.0 + 2.0 + 3.0 * 2.0 / 3.0);
    EXPECT_DOUBLE_EQ(bins[1], 3.0 / 3.0 + 4.0 + 5.0 + 6.0 / 3.0);
    EXPECT_NEAR(std::accumulate(bins.begin(), bins.end(), 0.0), 256.0 * 257.0 / 2.0, 1e-6);
}

TEST(HistogramTest, TheEndsHaveNoSayInTheHeight) {
    EXPECT_EQ(drawingLimit(std::vector<std::vector<double>>{{900.0, 5.0, 7.0, 800.0}}), 7.0);
    EXPECT_EQ(drawingLimit(std::vector<std::vector<double>>{{900.0, 0.0, 0.0, 800.0}}), 900.0);
}

TEST(HistogramTest, ASpikeIsCutOffAndAHillIsNot) {
    std::vector<double> bins(256, 10.0);
    bins[100] = 1000.0;
    EXPECT_EQ(drawingLimit(std::vector<std::vector<double>>{bins}), 15.0);
    bins[100] = 14.0;
    EXPECT_EQ(drawingLimit(std::vector<std::vector<double>>{bins}), 14.0);
}

TEST(HistogramTest, FewPixelsAreNotNone) {
    EXPECT_EQ(percentage(0, 1000000), "0.00 %");
    EXPECT_EQ(percentage(1, 1000000), "< 0.01 %");
    EXPECT_EQ(percentage(1, 8), "12.50 %");
}

TEST(HistogramTest, PlainTextIsAscii) {
    const std::string text = drawAsText(greyHistogram(0, 5), "a title", {80, false, false});
    EXPECT_EQ(text.substr(0, 17), "a title\n\nluma   #");
    for (const char c : text) {
        EXPECT_TRUE(c == '\n' || (c >= ' ' && c <= '~')) << static_cast<int>(c);
    }
}

TEST(HistogramTest, BlocksAreUsedWhereTheTerminalHasThem) {
    const std::string text = drawAsText(greyHistogram(0, 5), "a title", {80, true, false});
    EXPECT_NE(text.find("luma   \xE2\x96\x88\n"), std::string::npos) << text;
    EXPECT_EQ(text.find('\x1b'), std::string::npos);
}

TEST(HistogramTest, ColoursComeAsEscapeSequences) {
    Histogram histogram = greyHistogram(10, 5);
    histogram.color = true;
    histogram.channels[Histogram::RED].bins[10] = 5;
    EXPECT_NE(drawAsText(histogram, "", {80, true, true}).find("\x1b[91m"), std::string::npos);
}

TEST(HistogramTest, LinesAreNoLongerThanTheTerminalIsWide) {
    Histogram histogram = greyHistogram(255, 5);
    histogram.color = true;
    for (const std::size_t columns : {24U, 40U, 41U, 80U, 120U}) {
        const std::string text = drawAsText(histogram, "", {columns, false, false});
        const std::string drawing = text.substr(0, text.find("shadows") - 20); // the table has a width of its own
        for (std::size_t start = 0, end = 0; end != std::string::npos; start = end + 1) {
            end = drawing.find('\n', start);
            EXPECT_LE(std::min(end, drawing.size()) - start, columns);
        }
    }
}

TEST(HistogramTest, WhatOccursAtAllShows) {
    Histogram histogram = greyHistogram(200, 1);
    histogram.channels[Histogram::LUMA].bins[100] = 1000000;
    const std::string text = drawAsText(histogram, "", {263, false, false}); // a column for each code
    const std::size_t axis = text.find("       ---");
    const std::string lowest = text.substr(text.rfind('\n', axis - 2) + 1);
    EXPECT_EQ(lowest[7 + 100], '#');
    EXPECT_EQ(lowest[7 + 200], '.');
}

} // namespace zqx::app
