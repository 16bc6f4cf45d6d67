// Conversion between straight and premultiplied alpha.
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/Image.h>

#include "oracle/Alpha.h"
#include "unit/support/Compare.h"
#include "unit/support/Fill.h"
#include "unit/support/GuardedImage.h"
#include "unit/support/Literal.h"

namespace {

using namespace test;
using Bytes = std::vector<int>;
using zqx::img::premultiplied2StraightAlpha;
using zqx::img::straight2PremultipliedAlpha;

constexpr Image::Format ALPHA_FORMATS[] = {Image::RGBA8, Image::SRGBA8, Image::RGBA32F, Image::SBGRA8};

using Conversion = void (*)(Image&);
using Rule = void (*)(const oracle::Surface&);

void expectConversion(GuardedImage& image, Conversion convert, Rule rule) {
    GuardedImage expected(image.image().getWidth(), image.image().getHeight(), image.image().getFormat(), {0, 8});
    expected.setMemory(image.memory());
    rule(expected.surface());
    convert(image.image());
    EXPECT_TRUE(samePixels(image.image(), expected.image()));
    EXPECT_TRUE(image.guardsIntact());
}

/// All 65,536 pairs of a colour byte and an alpha byte, the other colours moving along.
void fillColourAlphaPairs(const oracle::Surface& s) {
    fillElements(
        s,
        [](std::size_t x, std::size_t y, int e) {
            return static_cast<unsigned char>(e == 3 ? y : x + 85 * static_cast<std::size_t>(e));
        },
        [](std::size_t x, std::size_t y, int e) {
            return e == 3 ? static_cast<float>(y) / 200.0F : static_cast<float>(x + e) / 100.0F;
        });
}

void expectConversionOfAllPixels(Conversion convert, Rule rule) {
    for (const Image::Format format : ALPHA_FORMATS) {
        GuardedImage pairs(256, 256, format, {0, 8});
        fillColourAlphaPairs(pairs.surface());
        expectConversion(pairs, convert, rule);
        for (std::size_t width = 0; width <= 40; ++width) {
            GuardedImage random(width, 3, format, {0, 8});
            fillRandom(random.surface(), width);
            expectConversion(random, convert, rule);
        }
    }
}

void expectNothingHappens(Conversion convert) {
    for (const Image::Format format : ALL_FORMATS) {
        if (!oracle::hasAlpha(format)) {
            GuardedImage image(9, 3, format);
            fillRandom(image.surface(), 1);
            const std::vector<unsigned char> before = image.memory();
            convert(image.image());
            EXPECT_EQ(before, image.memory()) << getName(format);
        }
    }
    for (const Image::Format format : UNKNOWN_FORMATS) {
        GuardedImage image(9, 3, format, {4, 4});
        convert(image.image());
        EXPECT_TRUE(image.guardsIntact());
    }
    for (const Image::Format format : ALPHA_FORMATS) {
        GuardedImage tall(0, 3, format, {0, 16});
        convert(tall.image());
        EXPECT_TRUE(tall.guardsIntact());
        GuardedImage wide(3, 0, format);
        convert(wide.image());
        EXPECT_TRUE(wide.guardsIntact());
    }
}

TEST(AlphaTest, DividingLimitsAndTruncatesBytes) {
    BytePicture picture(Image::RGBA8, 1, {64, 32, 200, 128});
    premultiplied2StraightAlpha(picture.image());
    EXPECT_EQ((Bytes{127, 63, 255, 128}), getBytes(picture.image()));
}

TEST(AlphaTest, DividingTakesEncodedBytesAsStored) {
    for (const Image::Format format : {Image::SRGBA8, Image::SBGRA8}) {
        BytePicture picture(format, 1, {64, 32, 200, 128});
        premultiplied2StraightAlpha(picture.image());
        EXPECT_EQ((Bytes{127, 63, 255, 128}), getBytes(picture.image())) << getName(format);
    }
}

TEST(AlphaTest, DividingKeepsTheColoursOfTransparentPixels) {
    BytePicture picture(Image::RGBA8, 1, {1, 128, 255, 0});
    premultiplied2StraightAlpha(picture.image());
    EXPECT_EQ((Bytes{1, 128, 255, 0}), getBytes(picture.image()));
}

TEST(AlphaTest, DividingStartsAboveOneTenThousandth) {
    const float above = std::nextafter(0.0001F, 1.0F);
    FloatPicture picture(Image::RGBA32F, 1,
                         {1.0F, 1.0F, 1.0F, 0.0001F, 1.0F, 1.0F, 1.0F, above, 1.0F, 1.0F, 1.0F, -1.0F});
    premultiplied2StraightAlpha(picture.image());
    EXPECT_EQ(1.0F, picture[0]);
    EXPECT_EQ(1.0F / above, picture[4]);
    EXPECT_EQ(1.0F, picture[8]) << "negative alpha";
}

TEST(AlphaTest, DividingDoesNotLimitFloats) {
    FloatPicture picture(Image::RGBA32F, 1, {0.5F, -1.0F, 3.0F, 0.5F});
    premultiplied2StraightAlpha(picture.image());
    EXPECT_EQ((std::vector<float>{1.0F, -2.0F, 6.0F, 0.5F}), getFloats(picture.image()));
}

TEST(AlphaTest, MultiplyingFloats) {
    FloatPicture picture(Image::RGBA32F, 1, {0.5F, 1.0F, 2.0F, 0.5F});
    straight2PremultipliedAlpha(picture.image());
    EXPECT_EQ((std::vector<float>{0.25F, 0.5F, 1.0F, 0.5F}), getFloats(picture.image()));
}

TEST(AlphaTest, MultiplyingByZeroAlphaGivesBlack) {
    BytePicture picture(Image::SRGBA8, 1, {255, 128, 1, 0});
    straight2PremultipliedAlpha(picture.image());
    EXPECT_EQ((Bytes{0, 0, 0, 0}), getBytes(picture.image()));
}

TEST(AlphaTest, MultiplyingDecodesEncodedBytes) {
    BytePicture linear(Image::RGBA8, 1, {255, 255, 255, 128});
    straight2PremultipliedAlpha(linear.image());
    EXPECT_EQ((Bytes{128, 128, 128, 128}), getBytes(linear.image()));
    BytePicture encoded(Image::SBGRA8, 1, {255, 255, 255, 128});
    straight2PremultipliedAlpha(encoded.image());
    EXPECT_EQ((Bytes{186, 186, 186, 128}), getBytes(encoded.image())); // 255 * (128 / 255)^(1/2.2) = 186.4
}

TEST(AlphaTest, DividingAllBytesAndSpecialFloats) {
    expectConversionOfAllPixels(premultiplied2StraightAlpha, oracle::toStraight);
}

TEST(AlphaTest, MultiplyingAllBytesAndSpecialFloats) {
    expectConversionOfAllPixels(straight2PremultipliedAlpha, oracle::toPremultiplied);
}

TEST(AlphaTest, DividingLeavesFormatsWithoutAlphaAlone) {
    expectNothingHappens(premultiplied2StraightAlpha);
}

TEST(AlphaTest, MultiplyingLeavesFormatsWithoutAlphaAlone) {
    expectNothingHappens(straight2PremultipliedAlpha);
}

} // namespace
