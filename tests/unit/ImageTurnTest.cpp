// Mirror images and turns by quarters.
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/Image.h>

#include "oracle/Turn.h"
#include "unit/support/Compare.h"
#include "unit/support/Fill.h"
#include "unit/support/GuardedImage.h"
#include "unit/support/Literal.h"

namespace {

using namespace test;
using Bytes = std::vector<int>;

constexpr std::size_t SIDES[] = {0, 1, 2, 3, 4, 5, 16, 17, 33, 70};

/// Calls visit for every format and every pair of sides, with a filled, padded image.
template <typename Visit>
void forPaddedImages(Visit visit) {
    for (const Image::Format format : ALL_FORMATS) {
        for (const std::size_t width : SIDES) {
            for (const std::size_t height : SIDES) {
                SCOPED_TRACE(getName(format) + " " + std::to_string(width) + " x " + std::to_string(height));
                GuardedImage image(width, height, format, {0, 12});
                fillRandom(image.surface(), width * 100 + height);
                visit(image);
            }
        }
    }
}

using Turn = std::shared_ptr<Image> (Image::*)() const;
using Rule = void (*)(const oracle::Surface&, const oracle::Surface&);

void expectTurn(Turn turn, Rule rule, bool swapsSides) {
    forPaddedImages([&](GuardedImage& image) {
        const std::vector<unsigned char> before = image.memory();
        const std::size_t width = swapsSides ? image.image().getHeight() : image.image().getWidth();
        const std::size_t height = swapsSides ? image.image().getWidth() : image.image().getHeight();
        oracle::Picture expected(width, height, image.image().getFormat());
        rule(image.surface(), expected.surface);

        const std::shared_ptr<Image> turned = (image.image().*turn)();

        ASSERT_NE(nullptr, turned);
        EXPECT_EQ(width * oracle::pixelSize(image.image().getFormat()), turned->getByteRowStride());
        EXPECT_TRUE(samePixels(getSurface(*turned), expected.surface));
        EXPECT_EQ(before, image.memory()) << "the source changed";
    });
}

void expectFlip(void (Image::*flip)(), Rule rule) {
    forPaddedImages([&](GuardedImage& image) {
        oracle::Picture expected(image.image().getWidth(), image.image().getHeight(), image.image().getFormat());
        rule(image.surface(), expected.surface);
        const std::vector<unsigned char> before = image.memory();

        (image.image().*flip)();

        EXPECT_TRUE(samePixels(image.surface(), expected.surface));
        EXPECT_TRUE(image.guardsIntact());
        (image.image().*flip)();
        EXPECT_EQ(before, image.memory()) << "a second flip gives the original back";
    });
}

TEST(ImageTurnTest, FlipHorizontalSwapsLeftAndRight) {
    BytePicture picture(Image::GRAY8, 2, {1, 2, 3, 4, 5, 6});
    picture.image().flipHorizontal();
    EXPECT_EQ((Bytes{3, 2, 1, 6, 5, 4}), getBytes(picture.image()));
}

TEST(ImageTurnTest, FlipVerticalSwapsTopAndBottom) {
    BytePicture picture(Image::GRAY8, 3, {1, 2, 3, 4, 5, 6});
    picture.image().flipVertical();
    EXPECT_EQ((Bytes{5, 6, 3, 4, 1, 2}), getBytes(picture.image()));
}

TEST(ImageTurnTest, FlipHorizontalKeepsTheBytesOfAPixelInOrder) {
    BytePicture picture(Image::SBGR8, 1, {1, 2, 3, 4, 5, 6});
    picture.image().flipHorizontal();
    EXPECT_EQ((Bytes{4, 5, 6, 1, 2, 3}), getBytes(picture.image()));
}

TEST(ImageTurnTest, RotateClockwiseMovesTopLeftToTopRight) {
    BytePicture picture(Image::GRAY8, 2, {1, 2, 3, 4, 5, 6});
    const std::shared_ptr<Image> turned = picture.image().rotate90();
    EXPECT_EQ(2U, turned->getWidth());
    EXPECT_EQ(3U, turned->getHeight());
    EXPECT_EQ((Bytes{4, 1, 5, 2, 6, 3}), getBytes(*turned));
}

TEST(ImageTurnTest, RotateCounterClockwiseMovesTopLeftToBottomLeft) {
    BytePicture picture(Image::GRAY8, 2, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ((Bytes{3, 6, 2, 5, 1, 4}), getBytes(*picture.image().rotate270()));
}

TEST(ImageTurnTest, RotateByHalfMovesTopLeftToBottomRight) {
    BytePicture picture(Image::GRAY8, 2, {1, 2, 3, 4, 5, 6});
    EXPECT_EQ((Bytes{6, 5, 4, 3, 2, 1}), getBytes(*picture.image().rotate180()));
}

TEST(ImageTurnTest, FlipHorizontalInEveryFormatAndSize) {
    expectFlip(&Image::flipHorizontal, oracle::mirrorLeftRight);
}

TEST(ImageTurnTest, FlipVerticalInEveryFormatAndSize) {
    expectFlip(&Image::flipVertical, oracle::mirrorTopBottom);
}

TEST(ImageTurnTest, RotateClockwiseInEveryFormatAndSize) {
    expectTurn(&Image::rotate90, oracle::turnClockwise, true);
}

TEST(ImageTurnTest, RotateByHalfInEveryFormatAndSize) {
    expectTurn(&Image::rotate180, oracle::turnAround, false);
}

TEST(ImageTurnTest, RotateCounterClockwiseInEveryFormatAndSize) {
    expectTurn(&Image::rotate270, oracle::turnCounterClockwise, true);
}

TEST(ImageTurnTest, FourQuarterTurnsGiveTheImageBack) {
    for (const Image::Format format : ALL_FORMATS) {
        GuardedImage image(13, 7, format);
        fillRandom(image.surface(), 9);
        EXPECT_TRUE(samePixels(*image.image().rotate90()->rotate90()->rotate90()->rotate90(), image.image()));
        EXPECT_TRUE(samePixels(*image.image().rotate90()->rotate270(), image.image()));
    }
}

TEST(ImageTurnTest, LargePicturesTurnAcrossAllTheirBlocks) {
    for (const Image::Format format : {Image::SGRAY8, Image::RGB8, Image::SBGRA8, Image::RGBA32F}) {
        GuardedImage image(301, 203, format, {0, 4});
        fillRandom(image.surface(), 10);
        oracle::Picture expected(203, 301, format);
        oracle::turnClockwise(image.surface(), expected.surface);
        EXPECT_TRUE(samePixels(getSurface(*image.image().rotate90()), expected.surface));
        oracle::turnCounterClockwise(image.surface(), expected.surface);
        EXPECT_TRUE(samePixels(getSurface(*image.image().rotate270()), expected.surface));
    }
}

TEST(ImageTurnTest, SubImageFlipsStepByThePixelSizeNotTheStride) {
    BytePicture parent(Image::RGBA8, 1, {1, 2, 3, 4, 5, 6, 7, 8});
    Image sub = parent.image().getSubImage(0, 0, 2, 1); // reports one-byte pixels, four bytes apart
    sub.flipHorizontal();
    EXPECT_EQ((Bytes{2, 1, 3, 4, 5, 6, 7, 8}), getBytes(parent.image()));
}

TEST(ImageTurnTest, SubImageRotationsReadPackedPixels) {
    BytePicture parent(Image::RGBA8, 2, {1, 2, 3, 4, 5, 6, 7, 8, 11, 12, 13, 14, 15, 16, 17, 18});
    const Image sub = parent.image().getSubImage(0, 0, 2, 2);
    const std::shared_ptr<Image> turned = sub.rotate90();
    EXPECT_EQ(Image::GRAY8, turned->getFormat());
    EXPECT_EQ((Bytes{11, 1, 12, 2}), getBytes(*turned));
}

TEST(ImageTurnTest, UnknownFormatsAreNotFlipped) {
    for (const Image::Format format : UNKNOWN_FORMATS) {
        GuardedImage image(4, 4, format, {0, 16});
        image.image().flipHorizontal();
        image.image().flipVertical();
        EXPECT_TRUE(image.guardsIntact());
    }
}

TEST(ImageTurnTest, UnknownFormatsTurnIntoImagesWithoutPixelStride) {
    for (const Image::Format format : UNKNOWN_FORMATS) {
        const Image image(4, 3, format, 1);
        for (const Turn turn : {&Image::rotate90, &Image::rotate270}) {
            const std::shared_ptr<Image> turned = (image.*turn)();
            ASSERT_NE(nullptr, turned);
            EXPECT_EQ(format, turned->getFormat());
            EXPECT_EQ(3U, turned->getWidth());
            EXPECT_EQ(4U, turned->getHeight());
            EXPECT_EQ(0U, turned->getBytePixelStride());
        }
        EXPECT_EQ(0U, image.rotate180()->getBytePixelStride());
        EXPECT_EQ(4U, image.rotate180()->getWidth());
    }
}

} // namespace
