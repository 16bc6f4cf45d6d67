// The pixel buffer: construction, strides, views, ownership and plain copies.
#include <algorithm>
#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/Image.h>

#include "unit/support/Compare.h"
#include "unit/support/Fill.h"
#include "unit/support/GuardedImage.h"

namespace {

using namespace test;

/// An image that can let go of its pixels, for tests in which two images own the same buffer.
class ReleasableImage : public Image {
public:
    using Image::Image;
    using Image::operator=;
    using Image::disown;
};

void expectEmpty(const Image& image) {
    EXPECT_EQ(Image::GRAY8, image.getFormat());
    EXPECT_EQ(nullptr, image.getDataPtr());
    EXPECT_EQ(0U, image.getWidth());
    EXPECT_EQ(0U, image.getHeight());
    EXPECT_EQ(0U, image.getBytePixelStride());
    EXPECT_EQ(0U, image.getByteRowStride());
}

TEST(ImageTest, DefaultImageIsEmpty) {
    expectEmpty(Image());
}

TEST(ImageTest, ConstantMemoryIsSeenThroughAConstantView) {
    const unsigned char pixels[] = {1, 2, 3, 4, 5, 6, 7, 8};
    const auto& packed = Image::view(pixels, 2, 1, Image::SRGBA8);
    static_assert(std::is_same_v<decltype(Image::view(pixels, 2, 1, Image::SRGBA8)), const Image>);
    EXPECT_EQ(packed.getDataPtr(), pixels);
    EXPECT_EQ(packed.getFormat(), Image::SRGBA8);
    EXPECT_EQ(packed.getWidth(), 2U);
    EXPECT_EQ(packed.getHeight(), 1U);
    EXPECT_EQ(packed.getByteRowStride(), 8U);
    EXPECT_EQ(Image::view(pixels, 1, 2, Image::SRGB8, 4).getByteRowStride(), 4U);
    EXPECT_EQ(4, static_cast<const unsigned char*>(packed.convertTo(Image::RGBA8)->getDataPtr())[3]);
}

TEST(ImageTest, FormatNumbersAreFixed) {
    for (unsigned number = 0; number < 11; ++number) {
        EXPECT_EQ(number, static_cast<unsigned>(ALL_FORMATS[number]));
    }
    EXPECT_EQ(1U, static_cast<unsigned>(zqx::img::Red));
    EXPECT_EQ(2U, static_cast<unsigned>(zqx::img::Green));
    EXPECT_EQ(4U, static_cast<unsigned>(zqx::img::Blue));
    EXPECT_EQ(8U, static_cast<unsigned>(zqx::img::Alpha));
}

TEST(ImageTest, PixelStrideFollowsTheFormat) {
    const std::size_t strides[] = {1, 1, 4, 3, 3, 12, 3, 4, 4, 16, 4};
    for (const Image::Format format : ALL_FORMATS) {
        EXPECT_EQ(strides[format], Image(2, 2, format, 1).getBytePixelStride()) << getName(format);
        EXPECT_EQ(strides[format], Image(nullptr, 2, 2, format, 0).getBytePixelStride()) << getName(format);
    }
}

TEST(ImageTest, UnknownFormatHasNoPixelStride) {
    for (const Image::Format format : UNKNOWN_FORMATS) {
        const Image owned(3, 2, format, 4);
        EXPECT_EQ(format, owned.getFormat());
        EXPECT_EQ(3U, owned.getWidth());
        EXPECT_EQ(2U, owned.getHeight());
        EXPECT_EQ(0U, owned.getBytePixelStride());
        EXPECT_EQ(0U, owned.getByteRowStride());
        EXPECT_EQ(0U, Image(nullptr, 3, 2, format, 0).getByteRowStride());
    }
}

TEST(ImageTest, BlueComesFirstInTwoFormats) {
    for (const Image::Format format : ALL_FORMATS) {
        EXPECT_EQ(format == Image::SBGR8 || format == Image::SBGRA8, Image(1, 1, format, 1).isBGR()) << getName(format);
    }
    for (const Image::Format format : UNKNOWN_FORMATS) {
        EXPECT_FALSE(Image(1, 1, format, 1).isBGR());
    }
}

TEST(ImageTest, ThreeFormatsHoldFloats) {
    for (const Image::Format format : ALL_FORMATS) {
        const bool isFloat = format == Image::GRAY32F || format == Image::RGB32F || format == Image::RGBA32F;
        EXPECT_EQ(isFloat, Image(1, 1, format, 1).hasFloatFormat()) << getName(format);
    }
    for (const Image::Format format : UNKNOWN_FORMATS) {
        EXPECT_FALSE(Image(1, 1, format, 1).hasFloatFormat());
    }
}

TEST(ImageTest, RowsArePaddedToTheAlignmentWithZeros) {
    const Image image(3, 2, Image::RGB8, 4);
    EXPECT_EQ(3U, image.getBytePixelStride());
    EXPECT_EQ(12U, image.getByteRowStride());
    for (std::size_t y = 0; y < 2; ++y) {
        const auto* row = static_cast<const unsigned char*>(image.getRowPtr(y));
        EXPECT_EQ(0, row[9]);
        EXPECT_EQ(0, row[10]);
        EXPECT_EQ(0, row[11]);
    }
}

TEST(ImageTest, PaddingIsZeroWhateverTheMemoryHeldBefore) {
    for (int round = 0; round < 8; ++round) {
        const Image image(5, 40, Image::SGRAY8, 64);
        ASSERT_EQ(64U, image.getByteRowStride());
        for (std::size_t y = 0; y < 40; ++y) {
            auto* row = static_cast<unsigned char*>(image.getRowPtr(y));
            EXPECT_EQ(59, std::count(row + 5, row + 64, 0));
            std::fill(row, row + 64, 0xEE);
        }
    }
}

TEST(ImageTest, AlignmentOneGivesPackedRows) {
    EXPECT_EQ(9U, Image(3, 2, Image::RGB8, 1).getByteRowStride());
}

TEST(ImageTest, AlignmentThatFitsAddsNothing) {
    EXPECT_EQ(12U, Image(4, 2, Image::RGB8, 4).getByteRowStride());
    EXPECT_EQ(10U, Image(3, 2, Image::RGB8, 5).getByteRowStride());
}

TEST(ImageTest, ViewWithoutRowStrideIsPacked) {
    unsigned char memory[64] = {};
    const Image view(memory, 5, 3, Image::SBGR8, 0);
    EXPECT_EQ(15U, view.getByteRowStride());
    EXPECT_EQ(memory, view.getDataPtr());
    EXPECT_EQ(5U, view.getWidth());
    EXPECT_EQ(3U, view.getHeight());
    EXPECT_EQ(Image::SBGR8, view.getFormat());
}

TEST(ImageTest, ViewKeepsItsRowStride) {
    unsigned char memory[64] = {};
    EXPECT_EQ(20U, Image(memory, 5, 3, Image::SBGR8, 20).getByteRowStride());
}

TEST(ImageTest, AddressesFollowTheStrides) {
    unsigned char memory[100] = {};
    const Image view(memory, 5, 3, Image::SBGRA8, 24);
    EXPECT_EQ(memory + 48, view.getRowPtr(2));
    EXPECT_EQ(memory + 24 + 12, view.getPixelPtr(3, 1));
    EXPECT_EQ(memory + 24 * 4 + 4, view.getPixelPtr(1, 4)) << "bounds are the caller's business";
}

TEST(ImageTest, OwnedPixelsAreWritable) {
    for (const Image::Format format : ALL_FORMATS) {
        const Image image(7, 5, format, 16);
        fillRandom(getSurface(image), 1);
        EXPECT_EQ(0U, image.getByteRowStride() % 16);
    }
}

TEST(ImageTest, InexpressibleSizeRaisesBadAlloc) {
    constexpr std::size_t HUGE_SIZE = std::numeric_limits<std::size_t>::max() / 4;
    EXPECT_THROW(Image(HUGE_SIZE, 1, Image::RGBA32F, 1), std::bad_alloc);
    EXPECT_THROW(Image(1, HUGE_SIZE, Image::RGBA32F, 1), std::bad_alloc);
    EXPECT_THROW(Image(HUGE_SIZE, HUGE_SIZE, Image::GRAY8, 1), std::bad_alloc);
}

TEST(ImageTest, EmptySizesKeepTheirOtherSide) {
    const Image wide(4, 0, Image::RGB8, 4);
    EXPECT_EQ(4U, wide.getWidth());
    EXPECT_EQ(0U, wide.getHeight());
    EXPECT_EQ(12U, wide.getByteRowStride());
    const Image tall(0, 4, Image::RGB8, 4);
    EXPECT_EQ(0U, tall.getWidth());
    EXPECT_EQ(4U, tall.getHeight());
    EXPECT_EQ(0U, tall.getByteRowStride());
}

TEST(ImageTest, CopyIsAViewOfTheSamePixels) {
    const Image original(3, 2, Image::RGB8, 4);
    fillRandom(getSurface(original), 2);
    const auto* first = static_cast<const unsigned char*>(original.getDataPtr());
    const unsigned char before = *first;
    {
        const Image copy(original);
        EXPECT_EQ(original.getDataPtr(), copy.getDataPtr());
        EXPECT_EQ(Image::RGB8, copy.getFormat());
        EXPECT_EQ(3U, copy.getWidth());
        EXPECT_EQ(2U, copy.getHeight());
        EXPECT_EQ(3U, copy.getBytePixelStride());
        EXPECT_EQ(12U, copy.getByteRowStride());
    }
    EXPECT_EQ(before, *first) << "the copy freed pixels it does not own";
}

TEST(ImageTest, AssignmentCopiesOwnership) {
    ReleasableImage second;
    {
        ReleasableImage first(4, 4, Image::GRAY8, 1);
        std::fill_n(static_cast<unsigned char*>(first.getDataPtr()), 16, static_cast<unsigned char>(77));
        second = first;
        first.disown(); // one owner is left: the pixels live on
    }
    EXPECT_EQ(77, *static_cast<unsigned char*>(second.getPixelPtr(3, 3)));
    EXPECT_EQ(77, *static_cast<unsigned char*>(second.getPixelPtr(0, 0)));
}

TEST(ImageTest, AssignmentFreesNothing) {
    ReleasableImage target(4, 4, Image::GRAY8, 1);
    std::fill_n(static_cast<unsigned char*>(target.getDataPtr()), 16, static_cast<unsigned char>(78));
    ReleasableImage keeper;
    keeper = target;
    unsigned char foreign = 5;
    target = Image(&foreign, 1, 1, Image::SGRAY8, 0);
    EXPECT_EQ(&foreign, target.getDataPtr());
    EXPECT_EQ(Image::SGRAY8, target.getFormat());
    EXPECT_EQ(78, *static_cast<unsigned char*>(keeper.getPixelPtr(0, 0)));
}

TEST(ImageTest, AssignmentFromAViewDoesNotOwn) {
    const Image original(4, 4, Image::GRAY8, 1);
    *static_cast<unsigned char*>(original.getDataPtr()) = 79;
    {
        Image target;
        target = Image(original);
        EXPECT_EQ(original.getDataPtr(), target.getDataPtr());
    }
    EXPECT_EQ(79, *static_cast<unsigned char*>(original.getDataPtr()));
}

TEST(ImageTest, SelfAssignmentKeepsEverything) {
    Image image(2, 2, Image::RGB8, 1);
    const Image& same = image;
    image = same;
    EXPECT_EQ(2U, image.getWidth());
    EXPECT_NE(nullptr, image.getDataPtr());
}

TEST(ImageTest, SubImageReportsGreyWithTheParentsStrides) {
    const Image parent(6, 4, Image::RGBA32F, 32);
    const Image sub = parent.getSubImage(1, 2, 3, 2);
    EXPECT_EQ(Image::GRAY8, sub.getFormat());
    EXPECT_EQ(16U, sub.getBytePixelStride());
    EXPECT_EQ(parent.getByteRowStride(), sub.getByteRowStride());
    EXPECT_EQ(3U, sub.getWidth());
    EXPECT_EQ(2U, sub.getHeight());
    EXPECT_EQ(parent.getPixelPtr(1, 2), sub.getDataPtr());
}

TEST(ImageTest, SubImageOfASubImageAddressesTheRightPixel) {
    const Image parent(9, 7, Image::SBGR8, 4);
    const Image inner = parent.getSubImage(2, 1, 6, 5).getSubImage(3, 2, 2, 2);
    EXPECT_EQ(parent.getPixelPtr(5, 3), inner.getDataPtr());
    EXPECT_EQ(parent.getPixelPtr(6, 4), inner.getPixelPtr(1, 1));
}

TEST(ImageTest, DestroyingASubImageFreesNothing) {
    const Image parent(4, 4, Image::GRAY8, 1);
    std::fill_n(static_cast<unsigned char*>(parent.getDataPtr()), 16, static_cast<unsigned char>(80));
    { const Image sub = parent.getSubImage(0, 0, 4, 4); }
    EXPECT_EQ(80, *static_cast<unsigned char*>(parent.getDataPtr()));
}

TEST(ImageTest, PlainImageCannotScale) {
    Image image(2, 2, Image::RGB8, 1);
    EXPECT_EQ(nullptr, image.scale(4, 4));
}

TEST(ImageTest, CopyFromMovesPixelsBetweenRowStrides) {
    for (const Image::Format format : ALL_FORMATS) {
        GuardedImage source(5, 3, format, {0, 8});
        GuardedImage target(5, 3, format, {0, 20});
        fillRandom(source.surface(), 3);
        target.image().copyFrom(source.image());
        EXPECT_TRUE(samePixels(target.image(), source.image()));
        EXPECT_TRUE(target.guardsIntact()) << getName(format);
    }
}

TEST(ImageTest, CopyFromAnotherFormatOrSizeLeavesTheTargetUnchanged) {
    GuardedImage target(4, 3, Image::SRGB8);
    fillRandom(target.surface(), 4);
    const std::vector<unsigned char> before = target.memory();
    for (const Image::Format format : ALL_FORMATS) {
        if (format != Image::SRGB8) {
            GuardedImage other(4, 3, format);
            target.image().copyFrom(other.image());
            EXPECT_EQ(before, target.memory()) << getName(format);
        }
    }
    GuardedImage wider(5, 3, Image::SRGB8);
    GuardedImage higher(4, 4, Image::SRGB8);
    target.image().copyFrom(wider.image());
    target.image().copyFrom(higher.image());
    EXPECT_EQ(before, target.memory());
}

TEST(ImageTest, CopyFromOfEmptyImagesWritesNothing) {
    for (const Image::Format format : ALL_FORMATS) {
        GuardedImage tall(0, 4, format, {0, 16});
        GuardedImage otherTall(0, 4, format, {0, 16});
        tall.image().copyFrom(otherTall.image());
        EXPECT_TRUE(tall.guardsIntact());
        GuardedImage wide(4, 0, format);
        GuardedImage otherWide(4, 0, format);
        wide.image().copyFrom(otherWide.image());
        EXPECT_TRUE(wide.guardsIntact());
    }
}

TEST(ImageTest, CopyFromOfUnknownFormatsWritesNothing) {
    for (const Image::Format format : UNKNOWN_FORMATS) {
        GuardedImage source(4, 3, format, {0, 16});
        GuardedImage target(4, 3, format, {0, 16});
        target.image().copyFrom(source.image());
        EXPECT_TRUE(target.guardsIntact());
    }
}

} // namespace
