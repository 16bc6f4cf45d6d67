// Smaller versions of bitmaps, beside a literal mean in double precision.
#include "zqx/tools/analysis/AreaAverage.h"

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

std::size_t channelsOf(Form form) {
    return viewOf(allocateBitmap(form, 1, 1), form).getBytePixelStride() / (isFloat(form) ? sizeof(float) : 1);
}

bool isAlpha(Form form, std::size_t channel) {
    return hasAlpha(form) && channel == 3;
}

/// One sample in linear light.
double sampleAt(const Bitmap& bitmap, Form form, unsigned x, unsigned y, std::size_t channel) {
    const void* pixel = viewOf(bitmap, form).getPixelPtr(x, y);
    if (isFloat(form)) {
        return static_cast<const float*>(pixel)[channel];
    }
    const double value = static_cast<const BYTE*>(pixel)[channel] / 255.0;
    return isAlpha(form, channel) ? value : std::pow(value, GAMMA);
}

void setSample(const Bitmap& bitmap, Form form, unsigned x, unsigned y, std::size_t channel, unsigned number) {
    void* pixel = viewOf(bitmap, form).getPixelPtr(x, y);
    if (isFloat(form)) {
        static_cast<float*>(pixel)[channel] = static_cast<float>(number % 1009) / 700.0F;
    } else {
        static_cast<BYTE*>(pixel)[channel] = static_cast<BYTE>(number % 256);
    }
}

/// Values that differ from sample to sample; some pixels are transparent where there is alpha.
Bitmap motley(Form form, Size size) {
    Bitmap bitmap = allocateBitmap(form, size.width, size.height);
    unsigned number = 17;
    for (unsigned y = 0; y < size.height; ++y) {
        for (unsigned x = 0; x < size.width; ++x) {
            for (std::size_t channel = 0; channel < channelsOf(form); ++channel) {
                number = number * 1664525U + 1013904223U;
                setSample(bitmap, form, x, y, channel, isAlpha(form, channel) && number % 3 == 0 ? 0 : number >> 8);
            }
        }
    }
    return bitmap;
}

/// The length that two intervals share.
double shared(double from, double to, double otherFrom, double otherTo) {
    return std::max(0.0, std::min(to, otherTo) - std::max(from, otherFrom));
}

/// The mean of the area under a pixel of the result: sum of what is asked for, over every pixel of the source.
double sumUnder(const Bitmap& source, Form form, Size size, unsigned x, unsigned y,
                const std::function<double(unsigned, unsigned)>& value) {
    const img::Image image = viewOf(source, form);
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

double meanUnder(const Bitmap& source, Form form, Size size, unsigned x, unsigned y, std::size_t channel) {
    const auto alphaAt = [&](unsigned sx, unsigned sy) { return sampleAt(source, form, sx, sy, 3); };
    const auto colorAt = [&](unsigned sx, unsigned sy) { return sampleAt(source, form, sx, sy, channel); };
    if (!hasAlpha(form) || isAlpha(form, channel)) {
        return sumUnder(source, form, size, x, y, colorAt);
    }
    const double alpha = sumUnder(source, form, size, x, y, alphaAt);
    if (alpha == 0.0) {
        return colorAt(middleUnder(x, size.width, FreeImage_GetWidth(source.get())),
                       middleUnder(y, size.height, FreeImage_GetHeight(source.get())));
    }
    return sumUnder(source, form, size, x, y,
                    [&](unsigned sx, unsigned sy) { return alphaAt(sx, sy) * colorAt(sx, sy); }) /
           alpha;
}

void expectMean(const Bitmap& result, Form form, unsigned x, unsigned y, std::size_t channel, double mean) {
    const void* pixel = viewOf(result, form).getPixelPtr(x, y);
    if (isFloat(form)) {
        EXPECT_NEAR(static_cast<const float*>(pixel)[channel], mean, 1e-6) << x << ", " << y << ", " << channel;
    } else {
        const double stored = 255.0 * (isAlpha(form, channel) ? mean : std::pow(mean, 1.0 / GAMMA));
        // Half a step, and what the two calculations of the same mean may differ by.
        EXPECT_NEAR(static_cast<const BYTE*>(pixel)[channel], stored, 0.5001) << x << ", " << y << ", " << channel;
    }
}

void expectOracle(Form form, Size from, Size to) {
    SCOPED_TRACE(std::string(nameOf(form)) + " to " + std::to_string(to.width) + " x " + std::to_string(to.height));
    const Bitmap source = motley(form, from);
    const Bitmap result = areaAverage(source, form, to);
    for (unsigned y = 0; y < to.height; ++y) {
        for (unsigned x = 0; x < to.width; ++x) {
            for (std::size_t channel = 0; channel < channelsOf(form); ++channel) {
                expectMean(result, form, x, y, channel, meanUnder(source, form, to, x, y, channel));
            }
        }
    }
}

constexpr Form FORMS[] = {Form::GREY8, Form::RGB8, Form::RGBA8, Form::GREY_FLOAT, Form::RGB_FLOAT, Form::RGBA_FLOAT};

} // namespace

TEST(AreaAverageTest, IsTheMeanOfTheAreaInLinearLight) {
    for (const Form form : FORMS) {
        expectOracle(form, {31, 23}, {7, 5});   // no whole ratio
        expectOracle(form, {24, 12}, {8, 4});   // a whole one
        expectOracle(form, {31, 23}, {30, 22}); // hardly smaller
        expectOracle(form, {31, 23}, {1, 1});
    }
}

TEST(AreaAverageTest, OneDirectionAloneIsReduced) {
    for (const Form form : FORMS) {
        expectOracle(form, {37, 4}, {5, 4});
        expectOracle(form, {4, 37}, {4, 5});
        expectOracle(form, {1, 37}, {1, 5});
    }
}

TEST(AreaAverageTest, TheOwnSizeGivesTheSamePixels) {
    for (const Form form : {Form::GREY8, Form::RGB8, Form::GREY_FLOAT, Form::RGB_FLOAT}) {
        const Bitmap source = motley(form, {13, 9});
        const Bitmap result = areaAverage(source, form, {13, 9});
        EXPECT_EQ(std::memcmp(FreeImage_GetBits(source.get()), FreeImage_GetBits(result.get()),
                              std::size_t{FreeImage_GetPitch(source.get())} * 9),
                  0)
            << nameOf(form);
    }
}

TEST(AreaAverageTest, EveryFlatByteStaysWhatItIs) {
    for (unsigned code = 0; code < 256; ++code) {
        const Bitmap source = allocateBitmap(Form::GREY8, 29, 17);
        for (unsigned y = 0; y < 17; ++y) {
            std::memset(FreeImage_GetScanLine(source.get(), static_cast<int>(y)), static_cast<int>(code), 29);
        }
        const Bitmap result = areaAverage(source, Form::GREY8, {11, 6});
        for (unsigned y = 0; y < 6; ++y) {
            for (unsigned x = 0; x < 11; ++x) {
                ASSERT_EQ(FreeImage_GetScanLine(result.get(), static_cast<int>(y))[x], code);
            }
        }
    }
}

TEST(AreaAverageTest, FlatFloatsKeepEveryBitWhateverTheirAlpha) {
    const float pixel[] = {0.1F, 1.0F / 3.0F, 12345.678F, 0.7F};
    for (const Form form : {Form::RGB_FLOAT, Form::RGBA_FLOAT}) {
        const Bitmap source = allocateBitmap(form, 29, 17);
        const img::Image image = viewOf(source, form);
        for (unsigned y = 0; y < 17; ++y) {
            for (unsigned x = 0; x < 29; ++x) {
                std::memcpy(image.getPixelPtr(x, y), pixel, image.getBytePixelStride());
            }
        }
        const Bitmap result = areaAverage(source, form, {11, 6});
        for (unsigned y = 0; y < 6; ++y) {
            for (unsigned x = 0; x < 11; ++x) {
                ASSERT_EQ(std::memcmp(viewOf(result, form).getPixelPtr(x, y), pixel, image.getBytePixelStride()), 0);
            }
        }
    }
}

TEST(AreaAverageTest, WhatIsTransparentThroughoutKeepsAColour) {
    const BYTE pixel[] = {10, 120, 230, 0};
    const Bitmap source = allocateBitmap(Form::RGBA8, 8, 8);
    for (unsigned y = 0; y < 8; ++y) {
        for (unsigned x = 0; x < 8; ++x) {
            std::memcpy(viewOf(source, Form::RGBA8).getPixelPtr(x, y), pixel, 4);
        }
    }
    const Bitmap result = areaAverage(source, Form::RGBA8, {3, 3});
    EXPECT_EQ(std::memcmp(viewOf(result, Form::RGBA8).getPixelPtr(1, 1), pixel, 4), 0);
}

TEST(AreaAverageTest, ANanStaysInThePixelThatCoversIt) {
    const Bitmap source = motley(Form::GREY_FLOAT, {16, 16});
    static_cast<float*>(viewOf(source, Form::GREY_FLOAT).getPixelPtr(5, 9))[0] =
        std::numeric_limits<float>::quiet_NaN();
    const Bitmap result = areaAverage(source, Form::GREY_FLOAT, {4, 4});
    for (unsigned y = 0; y < 4; ++y) {
        for (unsigned x = 0; x < 4; ++x) {
            EXPECT_EQ(std::isnan(sampleAt(result, Form::GREY_FLOAT, x, y, 0)), x == 1 && y == 2) << x << ", " << y;
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
