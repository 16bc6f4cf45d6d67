// Smaller versions of pictures, beside a literal mean in double precision.
#include <zqx/tools/Resize.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

namespace zqx::tools {

using namespace pictures;

namespace {

constexpr double GAMMA = 2.2;

std::size_t getChannels(SampleLayout layout) {
    return channelCount(layout);
}

bool isAlpha(SampleLayout layout, std::size_t channel) {
    return hasAlpha(layout) && channel == 3;
}

/// One sample in linear light.
double sampleAt(const PixelBuffer& pixels, SampleLayout layout, unsigned x, unsigned y, std::size_t channel) {
    const void* pixel = pixels.image().getPixelPtr(x, y);
    if (isFloat(layout)) {
        return static_cast<const float*>(pixel)[channel];
    }
    const double value = static_cast<const unsigned char*>(pixel)[channel] / 255.0;
    return isAlpha(layout, channel) ? value : std::pow(value, GAMMA);
}

void setSample(const PixelBuffer& pixels, SampleLayout layout, unsigned x, unsigned y, std::size_t channel,
               unsigned number) {
    void* pixel = pixels.image().getPixelPtr(x, y);
    if (isFloat(layout)) {
        static_cast<float*>(pixel)[channel] = static_cast<float>(number % 1009) / 700.0F;
    } else {
        static_cast<unsigned char*>(pixel)[channel] = static_cast<unsigned char>(number % 256);
    }
}

/// Values that differ from sample to sample; some pixels are transparent where there is alpha.
PixelBuffer motley(SampleLayout layout, Size size) {
    PixelBuffer pixels(size.width, size.height, layout);
    unsigned number = 17;
    for (unsigned y = 0; y < size.height; ++y) {
        for (unsigned x = 0; x < size.width; ++x) {
            for (std::size_t channel = 0; channel < getChannels(layout); ++channel) {
                number = number * 1664525U + 1013904223U;
                setSample(pixels, layout, x, y, channel, isAlpha(layout, channel) && number % 3 == 0 ? 0 : number >> 8);
            }
        }
    }
    return pixels;
}

/// The length that two intervals share.
double shared(double from, double to, double otherFrom, double otherTo) {
    return std::max(0.0, std::min(to, otherTo) - std::max(from, otherFrom));
}

/// The mean of the area under a pixel of the result: sum of what is asked for, over every pixel of the source.
double sumUnder(const PixelBuffer& source, Size size, unsigned x, unsigned y,
                const std::function<double(unsigned, unsigned)>& value) {
    const img::Image& image = source.image();
    const double width = static_cast<double>(image.getWidth()) / size.width;
    const double height = static_cast<double>(image.getHeight()) / size.height;
    double sum = 0.0;
    for (unsigned sy = 0; sy < image.getHeight(); ++sy) {
        for (unsigned sx = 0; sx < image.getWidth(); ++sx) {
            const double area =
                shared(x * width, (x + 1) * width, sx, sx + 1) * shared(y * height, (y + 1) * height, sy, sy + 1);
            sum += area > 0.0 ? area * value(sx, sy) : 0.0;
        }
    }
    return sum / (width * height);
}

/// The source line in the middle of those under a line of the result.
unsigned middleUnder(unsigned line, unsigned lines, unsigned sourceLines) {
    const unsigned first = line * sourceLines / lines;
    const unsigned last = ((line + 1) * sourceLines - 1) / lines;
    return (first + last) / 2;
}

double meanUnder(const PixelBuffer& source, SampleLayout layout, Size size, unsigned x, unsigned y,
                 std::size_t channel) {
    const auto alphaAt = [&](unsigned sx, unsigned sy) { return sampleAt(source, layout, sx, sy, 3); };
    const auto colorAt = [&](unsigned sx, unsigned sy) { return sampleAt(source, layout, sx, sy, channel); };
    if (!hasAlpha(layout) || isAlpha(layout, channel)) {
        return sumUnder(source, size, x, y, colorAt);
    }
    const double alpha = sumUnder(source, size, x, y, alphaAt);
    if (alpha == 0.0) {
        return colorAt(middleUnder(x, size.width, source.width()), middleUnder(y, size.height, source.height()));
    }
    return sumUnder(source, size, x, y, [&](unsigned sx, unsigned sy) { return alphaAt(sx, sy) * colorAt(sx, sy); }) /
           alpha;
}

void expectMean(const PixelBuffer& result, SampleLayout layout, unsigned x, unsigned y, std::size_t channel,
                double mean) {
    const void* pixel = result.image().getPixelPtr(x, y);
    if (isFloat(layout)) {
        EXPECT_NEAR(static_cast<const float*>(pixel)[channel], mean, 1e-6) << x << ", " << y << ", " << channel;
    } else {
        const double stored = 255.0 * (isAlpha(layout, channel) ? mean : std::pow(mean, 1.0 / GAMMA));
        // Half a step, and what the two calculations of the same mean may differ by.
        EXPECT_NEAR(static_cast<const unsigned char*>(pixel)[channel], stored, 0.5001)
            << x << ", " << y << ", " << channel;
    }
}

void expectOracle(SampleLayout layout, Size from, Size to) {
    SCOPED_TRACE(std::string(getName(layout)) + " to " + std::to_string(to.width) + " x " + std::to_string(to.height));
    PixelBuffer source = motley(layout, from);
    PixelBuffer result = areaAverage(source.image(), to);
    for (unsigned y = 0; y < to.height; ++y) {
        for (unsigned x = 0; x < to.width; ++x) {
            for (std::size_t channel = 0; channel < getChannels(layout); ++channel) {
                expectMean(result, layout, x, y, channel, meanUnder(source, layout, to, x, y, channel));
            }
        }
    }
}

constexpr SampleLayout FORMS[] = {SampleLayout::GRAY8,   SampleLayout::RGB8,   SampleLayout::RGBA8,
                                  SampleLayout::GRAY32F, SampleLayout::RGB32F, SampleLayout::RGBA32F};

} // namespace

TEST(AreaAverageTest, IsTheMeanOfTheAreaInLinearLight) {
    for (const SampleLayout layout : FORMS) {
        expectOracle(layout, {31, 23}, {7, 5});   // no whole ratio
        expectOracle(layout, {24, 12}, {8, 4});   // a whole one
        expectOracle(layout, {31, 23}, {30, 22}); // hardly smaller
        expectOracle(layout, {31, 23}, {1, 1});
    }
}

TEST(AreaAverageTest, OneDirectionAloneIsReduced) {
    for (const SampleLayout layout : FORMS) {
        expectOracle(layout, {37, 4}, {5, 4});
        expectOracle(layout, {4, 37}, {4, 5});
        expectOracle(layout, {1, 37}, {1, 5});
    }
}

TEST(AreaAverageTest, TheOwnSizeGivesTheSamePixels) {
    for (const SampleLayout layout :
         {SampleLayout::GRAY8, SampleLayout::RGB8, SampleLayout::GRAY32F, SampleLayout::RGB32F}) {
        PixelBuffer source = motley(layout, {13, 9});
        PixelBuffer result = areaAverage(source.image(), {13, 9});
        EXPECT_EQ(std::memcmp(source.image().getDataPtr(), result.image().getDataPtr(),
                              source.image().getByteRowStride() * 9),
                  0)
            << getName(layout);
    }
}

TEST(AreaAverageTest, EveryFlatByteStaysWhatItIs) {
    for (unsigned code = 0; code < 256; ++code) {
        PixelBuffer source(29, 17, SampleLayout::GRAY8);
        for (unsigned y = 0; y < 17; ++y) {
            std::memset(source.image().getRowPtr(y), static_cast<int>(code), 29);
        }
        PixelBuffer result = areaAverage(source.image(), {11, 6});
        for (unsigned y = 0; y < 6; ++y) {
            for (unsigned x = 0; x < 11; ++x) {
                ASSERT_EQ(static_cast<const unsigned char*>(result.image().getRowPtr(y))[x], code);
            }
        }
    }
}

TEST(AreaAverageTest, FlatFloatsKeepEveryBitWhateverTheirAlpha) {
    const float pixel[] = {0.1F, 1.0F / 3.0F, 12345.678F, 0.7F};
    for (const SampleLayout layout : {SampleLayout::RGB32F, SampleLayout::RGBA32F}) {
        PixelBuffer source(29, 17, layout);
        const img::Image& image = source.image();
        for (unsigned y = 0; y < 17; ++y) {
            for (unsigned x = 0; x < 29; ++x) {
                std::memcpy(image.getPixelPtr(x, y), pixel, image.getBytePixelStride());
            }
        }
        PixelBuffer result = areaAverage(source.image(), {11, 6});
        for (unsigned y = 0; y < 6; ++y) {
            for (unsigned x = 0; x < 11; ++x) {
                ASSERT_EQ(std::memcmp(result.image().getPixelPtr(x, y), pixel, image.getBytePixelStride()), 0);
            }
        }
    }
}

TEST(AreaAverageTest, WhatIsTransparentThroughoutKeepsAColour) {
    const unsigned char pixel[] = {10, 120, 230, 0};
    PixelBuffer source(8, 8, SampleLayout::RGBA8);
    for (unsigned y = 0; y < 8; ++y) {
        for (unsigned x = 0; x < 8; ++x) {
            std::memcpy(source.image().getPixelPtr(x, y), pixel, 4);
        }
    }
    PixelBuffer result = areaAverage(source.image(), {3, 3});
    EXPECT_EQ(std::memcmp(result.image().getPixelPtr(1, 1), pixel, 4), 0);
}

TEST(AreaAverageTest, ANanStaysInThePixelThatCoversIt) {
    PixelBuffer source = motley(SampleLayout::GRAY32F, {16, 16});
    static_cast<float*>(source.image().getPixelPtr(5, 9))[0] = std::numeric_limits<float>::quiet_NaN();
    PixelBuffer result = areaAverage(source.image(), {4, 4});
    for (unsigned y = 0; y < 4; ++y) {
        for (unsigned x = 0; x < 4; ++x) {
            EXPECT_EQ(std::isnan(sampleAt(result, SampleLayout::GRAY32F, x, y, 0)), x == 1 && y == 2) << x << ", " << y;
        }
    }
}

TEST(AreaAverageTest, TheLongestSideIsFittedAndNothingIsEnlarged) {
    EXPECT_EQ(fitted({6000, 4000}, 1024), (Size{1024, 683}));
    EXPECT_EQ(fitted({4000, 6000}, 1024), (Size{683, 1024}));
    EXPECT_EQ(fitted({800, 600}, 1024), (Size{800, 600}));
    EXPECT_EQ(fitted({1024, 1024}, 1024), (Size{1024, 1024}));
    EXPECT_EQ(fitted({90000, 2}, 100), (Size{100, 1}));
    EXPECT_EQ(fitted({1, 1}, 1), (Size{1, 1}));
}

} // namespace zqx::tools
