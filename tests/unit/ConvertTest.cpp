// Conversion between all pairs of formats.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/Image.h>

#include "oracle/Convert.h"
#include "unit/support/Compare.h"
#include "unit/support/Fill.h"
#include "unit/support/GuardedImage.h"
#include "unit/support/Literal.h"

namespace {

using namespace test;
using Bytes = std::vector<int>;
using Floats = std::vector<float>;

/// Converts into a fresh image and into a guarded one with strides of its own, and compares both with the oracle.
void expectConversion(const GuardedImage& source, Image::Format target, Gaps targetGaps) {
    const Image& from = source.image();
    SCOPED_TRACE(getName(from.getFormat(), target) + ", " + std::to_string(from.getWidth()) + " x " +
                 std::to_string(from.getHeight()));
    oracle::Picture expected(from.getWidth(), from.getHeight(), target);
    oracle::convert(source.surface(), expected.surface);

    const std::shared_ptr<Image> converted = from.convertTo(target);
    ASSERT_NE(nullptr, converted);
    EXPECT_EQ(from.getWidth() * oracle::pixelSize(target), converted->getByteRowStride());
    EXPECT_TRUE(samePixels(getSurface(*converted), expected.surface));

    if (target != from.getFormat()) { // equal formats are copied instead of converted
        GuardedImage written(from.getWidth(), from.getHeight(), target, targetGaps);
        written.image().convertFrom(from);
        EXPECT_TRUE(samePixels(written.surface(), expected.surface));
        EXPECT_TRUE(written.guardsIntact());
    }
}

Bytes convertedBytes(Image& source, Image::Format target) {
    return getBytes(*source.convertTo(target));
}

Floats convertedFloats(Image& source, Image::Format target) {
    return getFloats(*source.convertTo(target));
}

TEST(ConvertTest, LinearFloatsAreLimitedAndTruncated) {
    FloatPicture picture(Image::RGB32F, 1, {1.5F, -0.2F, 0.5F});
    EXPECT_EQ((Bytes{255, 0, 127}), convertedBytes(picture.image(), Image::RGB8));
}

TEST(ConvertTest, HalfIsEncodedAs186) {
    FloatPicture picture(Image::RGB32F, 1, {0.5F, 0.5F, 0.5F});
    EXPECT_EQ((Bytes{186, 186, 186}), convertedBytes(picture.image(), Image::SRGB8));
}

TEST(ConvertTest, MissingAlphaBecomesOpaque) {
    BytePicture picture(Image::RGB8, 1, {51, 102, 255});
    EXPECT_EQ((Bytes{51, 102, 255, 255}), convertedBytes(picture.image(), Image::RGBA8));
    EXPECT_EQ((Floats{51.0F / 255.0F, 102.0F / 255.0F, 1.0F, 1.0F}), convertedFloats(picture.image(), Image::RGBA32F));
}

TEST(ConvertTest, AlphaIsDroppedNotMultiplied) {
    BytePicture picture(Image::RGBA8, 1, {51, 102, 204, 0});
    EXPECT_EQ((Bytes{51, 102, 204}), convertedBytes(picture.image(), Image::RGB8));
}

TEST(ConvertTest, AlphaIsLinearInEncodedFormats) {
    BytePicture picture(Image::SRGBA8, 1, {0, 0, 0, 51});
    EXPECT_EQ((Floats{0.0F, 0.0F, 0.0F, 0.2F}), convertedFloats(picture.image(), Image::RGBA32F));
}

TEST(ConvertTest, BgrBytesAreReadBlueFirst) {
    BytePicture picture(Image::SBGR8, 1, {0, 0, 255});
    EXPECT_EQ((Floats{1.0F, 0.0F, 0.0F}), convertedFloats(picture.image(), Image::RGB32F));
}

TEST(ConvertTest, BgrBytesAreWrittenBlueFirst) {
    FloatPicture picture(Image::RGBA32F, 1, {1.0F, 0.0F, 0.5F, 1.0F});
    EXPECT_EQ((Bytes{186, 0, 255, 255}), convertedBytes(picture.image(), Image::SBGRA8));
}

TEST(ConvertTest, LinearWhiteIsWhiteInGrey) {
    BytePicture picture(Image::RGB8, 1, {255, 255, 255});
    EXPECT_EQ((Bytes{255}), convertedBytes(picture.image(), Image::GRAY8));
}

TEST(ConvertTest, GreyOfLinearColourIsLuma) {
    FloatPicture picture(Image::RGB32F, 3, {1, 0, 0, 0, 1, 0, 0, 0, 1});
    EXPECT_EQ((Floats{0.2126F, 0.7152F, 0.0722F}), convertedFloats(picture.image(), Image::GRAY32F));
}

TEST(ConvertTest, GreyOfLinearColourIsNotLimited) {
    FloatPicture picture(Image::RGB32F, 2, {10.0F, 0, 0, -10.0F, 0, 0});
    EXPECT_EQ((Floats{2.126F, -2.126F}), convertedFloats(picture.image(), Image::GRAY32F));
}

TEST(ConvertTest, GreyOfEncodedWhiteFallsShortOfOne) {
    BytePicture picture(Image::SRGB8, 1, {255, 255, 255});
    const float grey = convertedFloats(picture.image(), Image::GRAY32F)[0];
    EXPECT_EQ(oracle::decodeValue(0.2989F + 0.587F + 0.114F), grey); // the weights sum to 0.9999
    EXPECT_NEAR(0.99978, grey, 1e-5);
}

TEST(ConvertTest, GreyOfEncodedColourWeighsRedByItsPlace) {
    BytePicture rgb(Image::SRGB8, 1, {255, 0, 0});
    BytePicture bgr(Image::SBGRA8, 1, {0, 0, 255, 9});
    EXPECT_EQ(oracle::decodeValue(0.2989F), convertedFloats(rgb.image(), Image::GRAY32F)[0]);
    EXPECT_EQ(oracle::decodeValue(0.2989F), convertedFloats(bgr.image(), Image::GRAY32F)[0]);
}

TEST(ConvertTest, GreyIsReplicatedIntoColour) {
    BytePicture picture(Image::GRAY8, 1, {51});
    EXPECT_EQ((Bytes{51, 51, 51, 255}), convertedBytes(picture.image(), Image::RGBA8));
    EXPECT_EQ((Floats{0.2F, 0.2F, 0.2F, 1.0F}), convertedFloats(picture.image(), Image::RGBA32F));
}

TEST(ConvertTest, FloatsAreCopiedWithTheirExtremes) {
    for (const Image::Format format : FLOAT_FORMATS) {
        GuardedImage source(50, 3, format);
        fillSweep(source.surface());
        EXPECT_TRUE(samePixels(*source.image().convertTo(format), source.image())) << getName(format);
    }
}

TEST(ConvertTest, BytesSurviveConversionToTheirOwnFormat) {
    // The encoding exponent is a little below 1/2.2, which lifts every decoded code over its threshold again.
    for (const Image::Format format : {Image::GRAY8, Image::SGRAY8}) {
        GuardedImage source(256, 1, format);
        fillSweep(source.surface());
        const std::shared_ptr<Image> converted = source.image().convertTo(format);
        for (int i = 0; i < 256; ++i) {
            EXPECT_EQ(i, *static_cast<unsigned char*>(converted->getPixelPtr(i, 0))) << getName(format);
        }
    }
}

TEST(ConvertTest, ConvertFromTheOwnFormatCopies) {
    for (const Image::Format format : ALL_FORMATS) {
        GuardedImage source(256, 2, format, {0, 4});
        fillSweep(source.surface());
        GuardedImage target(256, 2, format, {0, 12});
        target.image().convertFrom(source.image());
        EXPECT_TRUE(samePixels(target.image(), source.image()));
        EXPECT_TRUE(target.guardsIntact());
    }
}

TEST(ConvertTest, ConvertFromAnotherSizeLeavesTheTargetUntouched) {
    GuardedImage target(5, 4, Image::RGB8);
    for (const Image::Format format : ALL_FORMATS) {
        GuardedImage narrow(4, 4, format);
        GuardedImage low(5, 3, format);
        target.image().convertFrom(narrow.image());
        target.image().convertFrom(low.image());
    }
    GuardedImage untouched(5, 4, Image::RGB8);
    EXPECT_EQ(untouched.memory(), target.memory());
}

TEST(ConvertTest, AllPairsWithEveryByteAndSpecialFloats) {
    forAllPairs([](Image::Format from, Image::Format to) {
        GuardedImage source(256, 3, from, {0, 4});
        fillSweep(source.surface());
        expectConversion(source, to, {0, 8});
    });
}

TEST(ConvertTest, AllPairsWithRandomPixels) {
    forAllPairs([](Image::Format from, Image::Format to) {
        GuardedImage source(1031, 24, from);
        fillRandom(source.surface(), from * 16 + to);
        expectConversion(source, to, {});
    });
}

TEST(ConvertTest, AllPairsInEveryWidthUpToForty) {
    forAllPairs([](Image::Format from, Image::Format to) {
        for (std::size_t width = 1; width <= 40; ++width) {
            GuardedImage source(width, 3, from, {0, width % 3 * 4});
            fillRandom(source.surface(), width);
            expectConversion(source, to, {0, width % 4 * 4});
        }
    });
}

TEST(ConvertTest, AllPairsBetweenFreePixelStrides) {
    forAllPairs([](Image::Format from, Image::Format to) {
        GuardedImage source(37, 3, from, {4, 8});
        fillRandom(source.surface(), 7);
        expectConversion(source, to, {8, 4});
    });
}

TEST(ConvertTest, AllPairsFromTheMiddleOfALargerPicture) {
    forAllPairs([](Image::Format from, Image::Format to) {
        GuardedImage parent(30, 9, from);
        fillRandom(parent.surface(), 8);
        Image& image = parent.image();
        const Image window(image.getPixelPtr(5, 2), 21, 4, from, image.getByteRowStride());
        GuardedImage target(40, 12, to);
        GuardedImage expected(40, 12, to);
        Image& whole = target.image();
        Image targetWindow(whole.getPixelPtr(9, 3), 21, 4, to, whole.getByteRowStride());
        const Image expectedWindow(expected.image().getPixelPtr(9, 3), 21, 4, to, expected.image().getByteRowStride());
        if (from == to) {
            for (std::size_t y = 0; y < 4; ++y) {
                std::memcpy(expectedWindow.getRowPtr(y), window.getRowPtr(y), 21 * oracle::pixelSize(to));
            }
        } else {
            oracle::convert(getSurface(window), getSurface(expectedWindow));
        }

        targetWindow.convertFrom(window);

        EXPECT_TRUE(samePixels(target.image(), expected.image())) << getName(from, to);
    });
}

TEST(ConvertTest, ImagesWithoutPixelsGiveImagesWithoutPixels) {
    forAllPairs([](Image::Format from, Image::Format to) {
        GuardedImage tall(0, 3, from, {0, 16});
        GuardedImage wide(3, 0, from);
        expectConversion(tall, to, {0, 16});
        expectConversion(wide, to, {0, 16});
    });
}

TEST(ConvertTest, CodesChangeAtTheExactFloats) {
    // All floats around the place where each code begins.
    constexpr int REACH = 96;
    for (const Image::Format target : {Image::SRGB8, Image::RGB8}) {
        std::vector<float> floats;
        for (int code = 1; code < 256; ++code) {
            const double fraction = code / 255.0;
            float value = static_cast<float>(target == Image::SRGB8 ? std::pow(fraction, 2.2) : fraction);
            std::uint32_t bits;
            std::memcpy(&bits, &value, sizeof bits);
            bits -= REACH;
            for (int i = 0; i < 2 * REACH + 1; ++i, ++bits) {
                std::memcpy(&value, &bits, sizeof bits);
                floats.push_back(value);
            }
        }
        floats.resize(floats.size() / 3 * 3);
        FloatPicture picture(Image::RGB32F, 1, floats);
        oracle::Picture expected(floats.size() / 3, 1, target);
        oracle::convert(getSurface(picture.image()), expected.surface);
        EXPECT_TRUE(samePixels(getSurface(*picture.image().convertTo(target)), expected.surface));
    }
}

TEST(ConvertTest, NotANumberBecomesZeroInBytes) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    FloatPicture picture(Image::RGBA32F, 1, {nan, -nan, nan, nan});
    for (const Image::Format target : {Image::RGBA8, Image::SRGBA8, Image::SBGRA8}) {
        EXPECT_EQ((Bytes{0, 0, 0, 0}), convertedBytes(picture.image(), target)) << getName(target);
    }
    EXPECT_EQ((Bytes{0}), convertedBytes(picture.image(), Image::GRAY8));
}

TEST(ConvertTest, SubImageIsReadAsGreyThroughItsOwnStrides) {
    BytePicture parent(Image::RGBA8, 1, {51, 1, 2, 3, 102, 4, 5, 6});
    Image sub = parent.image().getSubImage(0, 0, 2, 1);
    EXPECT_EQ((Floats{51.0F / 255.0F, 102.0F / 255.0F}), convertedFloats(sub, Image::GRAY32F));
}

TEST(ConvertTest, SubImageIsWrittenAsGreyThroughItsOwnStrides) {
    BytePicture parent(Image::RGBA8, 1, {9, 9, 9, 9, 9, 9, 9, 9});
    FloatPicture grey(Image::GRAY32F, 1, {1.0F, 0.2F});
    Image sub = parent.image().getSubImage(0, 0, 2, 1);
    sub.convertFrom(grey.image());
    EXPECT_EQ((Bytes{255, 9, 9, 9, 51, 9, 9, 9}), getBytes(parent.image()));
}

TEST(ConvertTest, BytesOfTheSameLayoutConvertInPlace) {
    const Image::Format groups[][2] = {{Image::RGB8, Image::SRGB8},    {Image::SRGB8, Image::RGB8},
                                       {Image::GRAY8, Image::SGRAY8},  {Image::SGRAY8, Image::GRAY8},
                                       {Image::RGBA8, Image::SRGBA8},  {Image::SRGBA8, Image::RGBA8},
                                       {Image::SRGB8, Image::SBGR8},   {Image::SBGR8, Image::RGB8},
                                       {Image::SRGBA8, Image::SBGRA8}, {Image::SBGRA8, Image::RGBA8}};
    for (const auto& [from, to] : groups) {
        for (const std::size_t width : {1U, 15U, 16U, 17U, 64U, 257U}) {
            GuardedImage memory(width, 3, from, {0, 4});
            fillSweep(memory.surface());
            oracle::Picture expected(width, 3, to);
            oracle::convert(memory.surface(), expected.surface);
            const Image source = memory.image();
            Image target(source.getDataPtr(), width, 3, to, source.getByteRowStride());
            target.convertFrom(source);
            EXPECT_TRUE(samePixels(getSurface(target), expected.surface)) << getName(from, to) << ", width " << width;
            EXPECT_TRUE(memory.guardsIntact());
        }
    }
}

TEST(ConvertTest, LinearFloatKeepsTheChannels) {
    const Image::Format floats[] = {Image::GRAY32F, Image::GRAY32F, Image::GRAY32F, Image::RGB32F,
                                    Image::RGB32F,  Image::RGB32F,  Image::RGB32F,  Image::RGBA32F,
                                    Image::RGBA32F, Image::RGBA32F, Image::RGBA32F};
    for (const Image::Format format : ALL_FORMATS) {
        GuardedImage source(33, 2, format, {0, 4});
        fillRandom(source.surface(), 12);
        const std::shared_ptr<Image> converted = source.image().convertToLinearFloat();
        ASSERT_NE(nullptr, converted);
        EXPECT_EQ(floats[format], converted->getFormat()) << getName(format);
        EXPECT_TRUE(samePixels(*converted, *source.image().convertTo(floats[format])));
        EXPECT_NE(source.image().getDataPtr(), converted->getDataPtr());
    }
}

TEST(ConvertTest, LinearFloatOfAnUnknownFormatIsEmpty) {
    for (const Image::Format format : UNKNOWN_FORMATS) {
        EXPECT_EQ(nullptr, Image(2, 2, format, 1).convertToLinearFloat());
    }
}

TEST(ConvertTest, UnknownFormatsAreNotConverted) {
    for (const Image::Format unknown : UNKNOWN_FORMATS) {
        for (const Image::Format format : ALL_FORMATS) {
            GuardedImage known(4, 3, format);
            GuardedImage strange(4, 3, unknown, {4, 16});
            known.image().convertFrom(strange.image());
            strange.image().convertFrom(known.image());
            EXPECT_EQ(GuardedImage(4, 3, format).memory(), known.memory());
            EXPECT_TRUE(strange.guardsIntact());
            const std::shared_ptr<Image> converted = known.image().convertTo(unknown);
            ASSERT_NE(nullptr, converted);
            EXPECT_EQ(0U, converted->getBytePixelStride());
            EXPECT_EQ(4U, converted->getWidth());
            EXPECT_EQ(3U, converted->getHeight());
        }
    }
}

} // namespace
