// Inversion in linear light.
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/Image.h>

#include "oracle/Invert.h"
#include "unit/support/Compare.h"
#include "unit/support/Fill.h"
#include "unit/support/GuardedImage.h"
#include "unit/support/Literal.h"

namespace {

using namespace test;
using zqx::img::Channel;
using Bytes = std::vector<int>;

constexpr Channel COLOURS = static_cast<Channel>(zqx::img::Red | zqx::img::Green | zqx::img::Blue);

void expectInversion(GuardedImage& image, unsigned mask) {
    GuardedImage expected(image.image().getWidth(), image.image().getHeight(), image.image().getFormat());
    for (std::size_t y = 0; y < expected.image().getHeight(); ++y) {
        for (std::size_t x = 0; x < expected.image().getWidth(); ++x) {
            std::memcpy(expected.surface().at(x, y), image.surface().at(x, y),
                        oracle::pixelSize(image.image().getFormat()));
        }
    }
    oracle::invert(expected.surface(), mask);
    image.image().invert(static_cast<Channel>(mask));
    EXPECT_TRUE(samePixels(image.image(), expected.image())) << "mask " << mask;
    EXPECT_TRUE(image.guardsIntact()) << getName(image.image().getFormat()) << " mask " << mask;
}

TEST(InvertTest, RedChangesOnlyTheFirstByteOfRgba) {
    BytePicture picture(Image::RGBA8, 1, {10, 20, 30, 40});
    picture.image().invert(zqx::img::Red);
    EXPECT_EQ((Bytes{245, 20, 30, 40}), getBytes(picture.image()));
}

TEST(InvertTest, RedIsTheThirdByteOfBgra) {
    BytePicture picture(Image::SBGRA8, 1, {10, 20, 0, 40});
    picture.image().invert(zqx::img::Red);
    EXPECT_EQ((Bytes{10, 20, 255, 40}), getBytes(picture.image()));
}

TEST(InvertTest, BlueIsTheFirstByteOfBgr) {
    BytePicture picture(Image::SBGR8, 1, {255, 20, 30});
    picture.image().invert(zqx::img::Blue);
    EXPECT_EQ((Bytes{0, 20, 30}), getBytes(picture.image()));
}

TEST(InvertTest, FloatsAreNotLimited) {
    FloatPicture picture(Image::RGBA32F, 1, {1.5F, -0.5F, 0.25F, 0.75F});
    picture.image().invert(zqx::img::Red);
    EXPECT_EQ((std::vector<float>{-0.5F, -0.5F, 0.25F, 0.75F}), getFloats(picture.image()));
}

TEST(InvertTest, EncodedMidGreyIsNotTheComplementOfItsByte) {
    BytePicture picture(Image::SGRAY8, 1, {128});
    picture.image().invert(zqx::img::Red);
    // 1 - 0.21952 = 0.78048, encoded: 255 * 0.78048^(1/2.2) = 227.8
    EXPECT_EQ((Bytes{227}), getBytes(picture.image()));
}

TEST(InvertTest, AlphaIsInvertedOnlyWhenAskedAndIsLinear) {
    BytePicture kept(Image::SRGBA8, 1, {0, 0, 0, 100});
    kept.image().invert(COLOURS);
    EXPECT_EQ((Bytes{255, 255, 255, 100}), getBytes(kept.image()));
    BytePicture inverted(Image::SRGBA8, 1, {9, 8, 7, 100});
    inverted.image().invert(zqx::img::Alpha);
    EXPECT_EQ((Bytes{9, 8, 7, 155}), getBytes(inverted.image()));
}

TEST(InvertTest, EveryFormatUnderEveryMask) {
    for (const Image::Format format : ALL_FORMATS) {
        for (unsigned mask = 0; mask < 16; ++mask) {
            GuardedImage bytes(256, 2, format);
            fillSweep(bytes.surface());
            expectInversion(bytes, mask);
            GuardedImage random(97, 5, format, {0, 8});
            fillRandom(random.surface(), mask);
            expectInversion(random, mask);
        }
    }
}

TEST(InvertTest, EveryWidthUpToForty) {
    for (const Image::Format format : ALL_FORMATS) {
        for (std::size_t width = 0; width <= 40; ++width) {
            GuardedImage image(width, 2, format, {0, 4});
            fillRandom(image.surface(), width);
            expectInversion(image, 13);
        }
    }
}

TEST(InvertTest, StepsByTheStridesOfTheImage) {
    for (const Image::Format format : ALL_FORMATS) {
        GuardedImage image(19, 4, format, {8, 4});
        fillRandom(image.surface(), 5);
        expectInversion(image, 15);
    }
}

TEST(InvertTest, SubImageInvertsTheFirstByteOfEachPixel) {
    BytePicture parent(Image::RGBA8, 1, {1, 2, 3, 4, 5, 6, 7, 8});
    parent.image().getSubImage(0, 0, 2, 1).invert(static_cast<Channel>(15));
    EXPECT_EQ((Bytes{254, 2, 3, 4, 250, 6, 7, 8}), getBytes(parent.image()));
}

TEST(InvertTest, ImagesWithoutPixelsAreLeftAlone) {
    for (const Image::Format format : ALL_FORMATS) {
        GuardedImage tall(0, 3, format, {0, 16});
        tall.image().invert(static_cast<Channel>(15));
        EXPECT_TRUE(tall.guardsIntact());
        GuardedImage wide(3, 0, format);
        wide.image().invert(static_cast<Channel>(15));
        EXPECT_TRUE(wide.guardsIntact());
        Image(nullptr, 0, 0, format, 0).invert(static_cast<Channel>(15));
    }
}

TEST(InvertTest, UnknownFormatsAreLeftAlone) {
    for (const Image::Format format : UNKNOWN_FORMATS) {
        GuardedImage image(4, 4, format, {4, 16});
        image.image().invert(static_cast<Channel>(15));
        EXPECT_TRUE(image.guardsIntact());
    }
}

} // namespace
