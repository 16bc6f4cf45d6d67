// Counting values, beside a literal count.
#include "kernels/statistics/ValueCounts.h"

#include <cmath>

#include <gtest/gtest.h>

#include "oracle/Nearest.h"
#include "unit/support/Fill.h"
#include "unit/support/GuardedImage.h"

namespace {

using test::GuardedImage;
using zqx::img::Image;
using zqx::img::kernels::ChannelCounts;
using zqx::img::kernels::countValues;
using zqx::img::kernels::ValueCounts;

void countLiterally(ChannelCounts& counts, float value) {
    if (std::isnan(value)) {
        ++counts.nan;
    } else if (value < 0.0F) {
        ++counts.below;
    } else if (value > 1.0F) {
        ++counts.above;
    } else {
        ++counts.bins[oracle::nearestByte(value)];
    }
}

void countPixel(ValueCounts& counts, const oracle::Surface& s, std::size_t x, std::size_t y) {
    const bool isFloat = oracle::facts(s.format).isFloat;
    double light[3];
    for (int channel = 0; channel < 3; ++channel) {
        const float value = oracle::linearChannel(s, x, y, channel);
        light[channel] = static_cast<double>(value);
        if (isFloat) {
            countLiterally(counts.channels[static_cast<std::size_t>(channel)], value);
        } else {
            const unsigned char code = s.at(x, y)[oracle::channelOffset(s.format, channel)];
            ++counts.channels[static_cast<std::size_t>(channel)].bins[code];
        }
    }
    const double luma = 0.2126 * light[0] + 0.7152 * light[1] + 0.0722 * light[2];
    countLiterally(counts.channels[ValueCounts::LUMA], static_cast<float>(luma));
}

void expectSame(const ChannelCounts& expected, const ChannelCounts& actual) {
    EXPECT_EQ(expected.bins, actual.bins);
    EXPECT_EQ(expected.below, actual.below);
    EXPECT_EQ(expected.above, actual.above);
    EXPECT_EQ(expected.nan, actual.nan);
}

TEST(ValueCounts, ColoursAreCountedByChannelAndByLuma) {
    for (const Image::Format format :
         {Image::SRGB8, Image::SBGR8, Image::SRGBA8, Image::SBGRA8, Image::RGB32F, Image::RGBA32F}) {
        SCOPED_TRACE(test::getName(format));
        GuardedImage image(67, 41, format, {3, 5});
        test::fillRandom(image.surface(), 8);
        ValueCounts expected;
        for (std::size_t y = 0; y < 41; ++y) {
            for (std::size_t x = 0; x < 67; ++x) {
                countPixel(expected, image.surface(), x, y);
            }
        }
        const ValueCounts actual = countValues(image.image());
        for (std::size_t channel = 0; channel < 4; ++channel) {
            expectSame(expected.channels[channel], actual.channels[channel]);
        }
    }
}

TEST(ValueCounts, GreysAreLumaAlone) {
    for (const Image::Format format : {Image::SGRAY8, Image::GRAY32F}) {
        SCOPED_TRACE(test::getName(format));
        GuardedImage image(67, 41, format, {1, 5});
        test::fillRandom(image.surface(), 9);
        ValueCounts expected;
        for (std::size_t i = 0; i < 67 * 41; ++i) {
            const unsigned char* pixel = image.surface().at(i % 67, i / 67);
            if (format == Image::GRAY32F) {
                countLiterally(expected.channels[ValueCounts::LUMA], oracle::loadFloat(pixel));
            } else {
                ++expected.channels[ValueCounts::LUMA].bins[*pixel];
            }
        }
        const ValueCounts actual = countValues(image.image());
        for (std::size_t channel = 0; channel < 4; ++channel) {
            expectSame(expected.channels[channel], actual.channels[channel]);
        }
    }
}

TEST(ValueCounts, TheLumaOfAGreyIsThatGrey) {
    GuardedImage image(256, 1, Image::SRGB8);
    test::fillElements(
        image.surface(), [](std::size_t x, std::size_t, int) { return static_cast<unsigned char>(x); },
        [](auto...) { return 0.0F; });
    const ValueCounts counts = countValues(image.image());
    for (const std::uint64_t count : counts.channels[ValueCounts::LUMA].bins) {
        EXPECT_EQ(1U, count);
    }
}

TEST(ValueCounts, OfLinearBytesAndUnknownFormatsNothingIsCounted) {
    GuardedImage image(2, 2, Image::RGB8);
    EXPECT_EQ(0U, countValues(image.image()).channels[ValueCounts::LUMA].bins[0xA5]);
    const ValueCounts counts = countValues(Image(nullptr, 2, 2, test::UNKNOWN_FORMATS[0], 0));
    expectSame(ChannelCounts(), counts.channels[ValueCounts::LUMA]);
}

} // namespace
