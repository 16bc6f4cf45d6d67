// Distances of two images, beside a literal comparison.
#include "kernels/statistics/Distance.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "oracle/Nearest.h"
#include "unit/support/Fill.h"
#include "unit/support/GuardedImage.h"
#include "unit/support/Literal.h"

namespace {

using namespace zqx::img::kernels;
using test::GuardedImage;
using zqx::img::Image;

constexpr double INFINITE = std::numeric_limits<double>::infinity();

double literalNumber(const oracle::Surface& s, std::size_t x, std::size_t y, int channel, Scale scale) {
    const unsigned char* element =
        s.at(x, y) + static_cast<std::size_t>(oracle::channelOffset(s.format, channel)) * oracle::elementSize(s.format);
    if (oracle::facts(s.format).isFloat) {
        const float value = oracle::loadFloat(element);
        return scale == Scale::LIGHT ? static_cast<double>(value)
               : channel == 3        ? oracle::nearestLinearWord(value)
                                     : oracle::nearestWord(value);
    }
    switch (scale) {
    case Scale::CODES_8: return *element;
    case Scale::CODES_16: return 257.0 * *element;
    case Scale::LIGHT: break;
    }
    return channel == 3 ? *element / 255.0 : static_cast<double>(oracle::decodePower(*element));
}

double literalDistance(const oracle::Surface& a, const oracle::Surface& b, std::size_t x, std::size_t y, int channel,
                       Scale scale) {
    const double left = literalNumber(a, x, y, channel, scale);
    const double right = literalNumber(b, x, y, channel, scale);
    if (left == right || (std::isnan(left) && std::isnan(right))) {
        return 0.0;
    }
    return std::isnan(left - right) ? INFINITE : std::fabs(left - right);
}

Distances literalDistances(const oracle::Surface& a, const oracle::Surface& b, Scale scale) {
    Distances found;
    for (std::size_t y = 0; y < a.height; ++y) {
        for (std::size_t x = 0; x < a.width; ++x) {
            bool differs = false;
            for (int channel = 0; channel < oracle::facts(a.format).channels; ++channel) {
                const double difference = literalDistance(a, b, x, y, channel, scale);
                found.sum += difference;
                found.sumOfSquares += difference * difference;
                differs = differs || difference > 0.0;
                if (difference > found.largest) {
                    found.largest = difference;
                    found.x = x;
                    found.y = y;
                    found.channel = static_cast<std::size_t>(channel);
                }
            }
            found.differingPixels += differs ? 1 : 0;
        }
    }
    return found;
}

struct Pair {
    Image::Format a;
    Image::Format b;
    Scale scale;
};

/// Images of one kind, of both orders of bytes, of bytes beside floats, on every scale that they may be compared on.
constexpr Pair PAIRS[] = {
    {Image::SGRAY8, Image::SGRAY8, Scale::CODES_8},   {Image::SRGB8, Image::SBGR8, Scale::CODES_8},
    {Image::SBGRA8, Image::SRGBA8, Scale::CODES_8},   {Image::SBGR8, Image::RGB32F, Scale::CODES_16},
    {Image::RGBA32F, Image::SRGBA8, Scale::CODES_16}, {Image::GRAY32F, Image::GRAY32F, Scale::CODES_16},
    {Image::SGRAY8, Image::GRAY32F, Scale::LIGHT},    {Image::RGBA32F, Image::RGBA32F, Scale::LIGHT},
    {Image::SBGRA8, Image::RGBA32F, Scale::LIGHT}};

/// Two images, half of whose pixels differ.
struct Images {
    Images(const Pair& pair, bool finite) : a(WIDTH, HEIGHT, pair.a, {3, 5}), b(WIDTH, HEIGHT, pair.b, {1, 9}) {
        for (GuardedImage* image : {&a, &b}) {
            finite ? test::fillPhoto(image->surface(), 3) : test::fillRandom(image->surface(), 3);
        }
        GuardedImage other(WIDTH, HEIGHT, pair.b);
        finite ? test::fillPhoto(other.surface(), 4) : test::fillRandom(other.surface(), 4);
        for (std::size_t y = 0; y < HEIGHT; ++y) {
            for (std::size_t x = y % 2; x < WIDTH; x += 2) {
                std::copy_n(other.surface().at(x, y), oracle::pixelSize(pair.b), b.surface().at(x, y));
            }
        }
    }

    static constexpr std::size_t WIDTH = 37;
    static constexpr std::size_t HEIGHT = 53;
    GuardedImage a;
    GuardedImage b;
};

void expectSame(const Distances& expected, const Distances& actual) {
    EXPECT_EQ(expected.largest, actual.largest);
    EXPECT_EQ(expected.x, actual.x);
    EXPECT_EQ(expected.y, actual.y);
    EXPECT_EQ(expected.channel, actual.channel);
    EXPECT_EQ(expected.sum, actual.sum) << "to the last bit: sums have an order";
    EXPECT_EQ(expected.sumOfSquares, actual.sumOfSquares);
    EXPECT_EQ(expected.differingPixels, actual.differingPixels);
}

TEST(Distance, IsThatOfALiteralComparison) {
    for (const Pair& pair : PAIRS) {
        SCOPED_TRACE(test::getName(pair.a, pair.b));
        for (const bool finite : {true, false}) {
            Images images(pair, finite);
            expectSame(literalDistances(images.a.surface(), images.b.surface(), pair.scale),
                       measureDistances(images.a.image(), images.b.image(), pair.scale));
        }
    }
}

TEST(Distance, EqualImagesAreAtNoDistance) {
    for (const Pair& pair : PAIRS) {
        GuardedImage image(7, 5, pair.a);
        test::fillRandom(image.surface(), 2); // NaN among them
        expectSame(Distances(), measureDistances(image.image(), image.image(), pair.scale));
    }
}

TEST(Distance, ANumberAndNoneAreInfinitelyFarFromEachOther) {
    test::FloatPicture number(Image::GRAY32F, 1, {0.5F, 0.5F});
    test::FloatPicture none(Image::GRAY32F, 1, {0.5F, std::numeric_limits<float>::quiet_NaN()});
    const Distances found = measureDistances(number.image(), none.image(), Scale::LIGHT);
    EXPECT_EQ(INFINITE, found.largest);
    EXPECT_EQ(1U, found.x);
    EXPECT_EQ(1U, found.differingPixels);
}

TEST(Distance, OfSeveralLargestTheFirstIsTold) {
    test::BytePicture a(Image::SRGB8, 2, {0, 0, 0, 9, 9, 9, 0, 0, 0, 0, 0, 0});
    test::BytePicture b(Image::SRGB8, 2, {0, 1, 0, 9, 9, 5, 4, 0, 0, 0, 0, 0});
    const Distances found = measureDistances(a.image(), b.image(), Scale::CODES_8);
    EXPECT_EQ(4.0, found.largest);
    EXPECT_EQ(1U, found.x);
    EXPECT_EQ(0U, found.y);
    EXPECT_EQ(2U, found.channel);
    EXPECT_EQ(9.0, found.sum);
    EXPECT_EQ(3U, found.differingPixels);
}

TEST(Distance, ImagesWithoutRowsAreAtNoDistance) {
    const Image nothing(nullptr, 3, 0, Image::SRGB8, 0);
    expectSame(Distances(), measureDistances(nothing, nothing, Scale::CODES_8));
}

TEST(Distance, PaintedDistancesAreBrightenedAndRoundedUp) {
    for (const Pair& pair : PAIRS) {
        SCOPED_TRACE(test::getName(pair.a, pair.b));
        const int channels = oracle::facts(pair.a).channels;
        for (const bool finite : {true, false}) {
            Images images(pair, finite);
            const double largest = measureDistances(images.a.image(), images.b.image(), pair.scale).largest;
            GuardedImage painted(Images::WIDTH, Images::HEIGHT, channels == 1 ? Image::SGRAY8 : Image::SBGR8, {1, 3});
            paintDistances(images.a.image(), images.b.image(), pair.scale, largest, painted.image());
            EXPECT_TRUE(painted.guardsIntact());
            for (std::size_t i = 0; i < Images::WIDTH * Images::HEIGHT; ++i) {
                const std::size_t x = i % Images::WIDTH;
                const std::size_t y = i / Images::WIDTH;
                const auto distance = [&](int channel) {
                    return literalDistance(images.a.surface(), images.b.surface(), x, y, channel, pair.scale);
                };
                for (int channel = 0; channel < std::min(channels, 3); ++channel) {
                    const double difference = std::max(distance(channel), channels == 4 ? distance(3) : 0.0);
                    const double shade = std::isinf(difference) ? 255.0 : std::ceil(255.0 / largest * difference);
                    const int place = channels == 1 ? 0 : 2 - channel;
                    ASSERT_EQ(static_cast<int>(std::min(shade, 255.0)), painted.surface().at(x, y)[place]);
                }
            }
        }
    }
}

TEST(Distance, NothingIsPaintedWhereNothingDiffers) {
    GuardedImage image(3, 3, Image::SRGB8);
    GuardedImage painted(3, 3, Image::SRGB8);
    paintDistances(image.image(), image.image(), Scale::CODES_8, 0.0, painted.image());
    EXPECT_EQ(0, *painted.surface().at(1, 1));
}

} // namespace
