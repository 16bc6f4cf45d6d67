// The view through which the image model sees a bitmap's memory.
#include <type_traits>

#include <zqx/img/FreeImage.h>

#include "components/support/Bitmaps.h"
#include "components/support/ComponentTest.h"

namespace {

using namespace test;
using zqx::img::Image;
using LinkedBitmap = zqx::img::FreeImage;
using View = std::shared_ptr<Image>;

tov::TovRef<LinkedBitmap> linked(int type, int width, int height, int bitsPerPixel) {
    const tov::TovRef bitmap(LinkedBitmap::create());
    EXPECT_EQ(bitmap->allocate(type, width, height, bitsPerPixel), 0U);
    return bitmap;
}

/// Notes how it is asked to rescale, and answers what a test wants.
class RescaleSpy : public LinkedBitmap {
public:
    tov::Result rescale(int width, int height, int filter, IFreeImage** pOut) override {
        ++calls;
        lastWidth = width;
        lastHeight = height;
        lastFilter = filter;
        const tov::Result result =
            refusal == 0 || handsOutAnyway ? LinkedBitmap::rescale(width, height, filter, pOut) : refusal;
        lastOut = *pOut;
        return refusal != 0 ? refusal : result;
    }

    tov::Result refusal = 0;
    bool handsOutAnyway = false;
    int calls = 0;
    int lastWidth = 0;
    int lastHeight = 0;
    int lastFilter = -1;
    IFreeImage* lastOut = nullptr;
};

tov::TovRef<RescaleSpy> getSpy(int width, int height) {
    const tov::TovRef spy(new RescaleSpy);
    EXPECT_EQ(spy->allocate(FIT_BITMAP, width, height, 24), 0U);
    return spy;
}

/// How a bitmap is seen: only its bits per pixel count.
struct Seen {
    int type;
    int bitsPerPixel;
    Image::Format format;
    std::size_t pixelStride;
};

class BitmapViewTest : public ComponentTest {};
class ViewFormatTest : public ComponentTest, public testing::WithParamInterface<Seen> {};

INSTANTIATE_TEST_SUITE_P(Layouts, ViewFormatTest,
                         testing::Values(Seen{FIT_BITMAP, 8, Image::SGRAY8, 1}, Seen{FIT_BITMAP, 24, Image::SBGR8, 3},
                                         Seen{FIT_BITMAP, 32, Image::SBGRA8, 4}, Seen{FIT_RGBF, 96, Image::RGB32F, 12},
                                         Seen{FIT_RGBAF, 128, Image::RGBA32F, 16},
                                         Seen{FIT_FLOAT, 32, Image::SBGRA8, 4}, Seen{FIT_UINT32, 32, Image::SBGRA8, 4},
                                         Seen{FIT_COMPLEX, 128, Image::RGBA32F, 16},
                                         Seen{FIT_UINT16, 16, Image::GRAY8, 2}, Seen{FIT_BITMAP, 16, Image::GRAY8, 2},
                                         Seen{FIT_RGB16, 48, Image::GRAY8, 6}, Seen{FIT_RGBA16, 64, Image::GRAY8, 8},
                                         Seen{FIT_BITMAP, 4, Image::GRAY8, 0}, Seen{FIT_BITMAP, 1, Image::GRAY8, 0}),
                         [](const auto& tested) {
                             return "Type" + std::to_string(tested.param.type) + "Depth" +
                                    std::to_string(tested.param.bitsPerPixel);
                         });

} // namespace

TEST_P(ViewFormatTest, FormatFollowsTheBitsPerPixelAlone) {
    const auto bitmap = linked(GetParam().type, 3, 2, GetParam().bitsPerPixel);
    const View view = bitmap->asImage();
    EXPECT_EQ(view->getFormat(), GetParam().format);
    EXPECT_EQ(view->getBytePixelStride(), GetParam().pixelStride);
    EXPECT_EQ(view->getByteRowStride(), static_cast<std::size_t>(computePitch(*bitmap)));
    EXPECT_EQ(view->getWidth(), 3U);
    EXPECT_EQ(view->getHeight(), 2U);
    EXPECT_EQ(view->getDataPtr(), getLine(*bitmap, 0));
}

TEST_F(BitmapViewTest, RowsOf24BitsAreAlignedToFourBytes) {
    EXPECT_EQ(linked(FIT_BITMAP, 3, 2, 24)->asImage()->getByteRowStride(), 12U);
}

TEST_F(BitmapViewTest, RowZeroIsTheBottomOfThePicture) {
    const auto bitmap = linked(FIT_BITMAP, 2, 2, 24);
    setPixel(*bitmap, 0, 1, {1.0F, 0.0F, 0.0F, 1.0F});
    const auto* pixel = static_cast<const unsigned char*>(bitmap->asImage()->getPixelPtr(0, 0));
    EXPECT_EQ(std::vector<int>(pixel, pixel + 3), (std::vector<int>{0, 0, 255}));
}

TEST_F(BitmapViewTest, ViewSharesTheBitmapsMemory) {
    const auto bitmap = linked(FIT_BITMAP, 2, 2, 24);
    bitmap->asImage()->invert(static_cast<zqx::img::Channel>(7));
    EXPECT_EQ(pixelAt(*bitmap, 1, 1), (Pixel{1.0F, 1.0F, 1.0F, 1.0F}));
}

TEST_F(BitmapViewTest, EveryViewHoldsOneReference) {
    const auto bitmap = linked(FIT_BITMAP, 2, 2, 24);
    View first = bitmap->asImage();
    View second = bitmap->asImage();
    EXPECT_NE(first, second);
    EXPECT_EQ(getReferences(*bitmap), 3U);
    const View shared = first;
    EXPECT_EQ(getReferences(*bitmap), 3U);
    first.reset();
    EXPECT_EQ(getReferences(*bitmap), 3U);
    second.reset();
    EXPECT_EQ(getReferences(*bitmap), 2U);
}

TEST_F(BitmapViewTest, LastViewKeepsTheComponentAlive) {
    auto bitmap = linked(FIT_BITMAP, 2, 2, 24);
    LinkedBitmap* const component = bitmap.get();
    View view = bitmap->asImage();
    bitmap.reset();
    EXPECT_EQ(getReferences(*component), 1U);
    EXPECT_EQ(view->getWidth(), 2U);
    view.reset(); // destroys the component; leak detection tells if it does not
}

TEST_F(BitmapViewTest, ConstantComponentGivesAConstantView) {
    const auto bitmap = linked(FIT_BITMAP, 2, 2, 24);
    const LinkedBitmap& looked = *bitmap;
    static_assert(std::is_same_v<decltype(looked.asImage()), std::shared_ptr<const Image>>);
    const std::shared_ptr<const Image> view = looked.asImage();
    EXPECT_EQ(view->getDataPtr(), getLine(*bitmap, 0));
    EXPECT_EQ(getReferences(*bitmap), 2U);
}

TEST_F(BitmapViewTest, CopiesOfAViewAreViewsWithoutAReference) {
    const auto bitmap = linked(FIT_BITMAP, 2, 2, 24);
    const View view = bitmap->asImage();
    const Image copy(*view);
    EXPECT_EQ(copy.getDataPtr(), view->getDataPtr());
    EXPECT_EQ(getReferences(*bitmap), 2U);
}

TEST_F(BitmapViewTest, ViewOfAnEmptyObjectHasNoPixels) {
    const tov::TovRef bitmap(LinkedBitmap::create());
    const View view = bitmap->asImage();
    ASSERT_TRUE(view);
    EXPECT_EQ(view->getDataPtr(), nullptr);
    EXPECT_EQ(view->getWidth(), 0U);
    EXPECT_EQ(view->getHeight(), 0U);
    EXPECT_EQ(view->getBytePixelStride(), 0U);
    EXPECT_EQ(view->getByteRowStride(), 0U);
    EXPECT_EQ(view->getFormat(), Image::GRAY8);
    EXPECT_EQ(getReferences(*bitmap), 2U);
}

TEST_F(BitmapViewTest, ScaledViewHasExactlyTheSize) {
    const View scaled = linked(FIT_BITMAP, 5, 5, 24)->asImage()->scale(10, 20);
    ASSERT_TRUE(scaled);
    EXPECT_EQ(scaled->getWidth(), 10U);
    EXPECT_EQ(scaled->getHeight(), 20U);
    EXPECT_EQ(scaled->getFormat(), Image::SBGR8);
    EXPECT_EQ(scaled->getBytePixelStride(), 3U);
    EXPECT_EQ(scaled->getByteRowStride(), 32U);
}

TEST_F(BitmapViewTest, ScaledFormatFollowsTheBitsPerPixelAgain) {
    EXPECT_EQ(linked(FIT_BITMAP, 5, 5, 32)->asImage()->scale(2, 2)->getFormat(), Image::SBGRA8);
    EXPECT_EQ(linked(FIT_BITMAP, 5, 5, 8)->asImage()->scale(2, 2)->getFormat(), Image::SGRAY8);
    EXPECT_EQ(linked(FIT_RGBF, 5, 5, 96)->asImage()->scale(2, 2)->getFormat(), Image::RGB32F);
    EXPECT_EQ(linked(FIT_RGBAF, 5, 5, 128)->asImage()->scale(2, 2)->getFormat(), Image::RGBA32F);
    EXPECT_EQ(linked(FIT_UINT16, 5, 5, 16)->asImage()->scale(2, 2)->getFormat(), Image::GRAY8);
}

TEST_F(BitmapViewTest, ScalingAsksForTheLanczosFilter) {
    const auto spy = getSpy(5, 5);
    const View scaled = spy->asImage()->scale(10, 20);
    EXPECT_EQ(spy->calls, 1);
    EXPECT_EQ(spy->lastWidth, 10);
    EXPECT_EQ(spy->lastHeight, 20);
    EXPECT_EQ(spy->lastFilter, 5);
}

TEST_F(BitmapViewTest, ScaledViewHoldsTheOnlyReferenceOfTheNewBitmap) {
    const auto spy = getSpy(5, 5);
    const View scaled = spy->asImage()->scale(2, 2);
    ASSERT_NE(spy->lastOut, nullptr);
    EXPECT_EQ(getReferences(*spy->lastOut), 1U);
    EXPECT_EQ(getReferences(*spy), 1U);
}

TEST_F(BitmapViewTest, ScaledViewsScaleAgain) {
    const View scaled = linked(FIT_BITMAP, 5, 5, 24)->asImage()->scale(10, 20)->scale(3, 4);
    ASSERT_TRUE(scaled);
    EXPECT_EQ(scaled->getWidth(), 3U);
    EXPECT_EQ(scaled->getHeight(), 4U);
}

TEST_F(BitmapViewTest, ScalingThatFailsIsAssertedAndEmpty) {
    EXPECT_FALSE(linked(FIT_BITMAP, 5, 5, 24)->asImage()->scale(0, 20));
    EXPECT_EQ(assertions(), Texts{qutil::tovStrError(0x80070057)});
}

TEST_F(BitmapViewTest, ScalingToASizeBeyondAnIntIsAssertedAndEmpty) {
    constexpr std::size_t CUT_TO_FIVE = (std::size_t{1} << 32U) + 5;
    const View view = linked(FIT_BITMAP, 5, 5, 24)->asImage();
    EXPECT_FALSE(view->scale(CUT_TO_FIVE, 3));
    EXPECT_FALSE(view->scale(3, CUT_TO_FIVE));
    EXPECT_FALSE(view->scale(0x80000000U, 3));
    EXPECT_EQ(assertions(), Texts(3, qutil::tovStrError(0x80070057)));
}

TEST_F(BitmapViewTest, ScalingAnEmptyObjectIsAssertedAndEmpty) {
    const tov::TovRef bitmap(LinkedBitmap::create());
    EXPECT_FALSE(bitmap->asImage()->scale(2, 2));
    EXPECT_EQ(assertions(), Texts{qutil::tovStrError(0x80000100)});
}

TEST_F(BitmapViewTest, ScalingThatFailsReleasesABitmapHandedOutAllTheSame) {
    const auto spy = getSpy(5, 5);
    spy->refusal = tov::NOT_SUPPORTED;
    spy->handsOutAnyway = true;
    EXPECT_FALSE(spy->asImage()->scale(2, 2)); // leak detection tells if it is not released
    EXPECT_EQ(assertions(), Texts{qutil::tovStrError(0x80000101)});
}

TEST_F(BitmapViewTest, ScalingThatFailsGoesOnWithTheBitmapThatThereIsWhenTheHandlerSaysSo) {
    answerAssertions(true);
    const auto spy = getSpy(5, 5);
    spy->refusal = tov::NOT_SUPPORTED;
    spy->handsOutAnyway = true;
    const View scaled = spy->asImage()->scale(3, 2);
    ASSERT_TRUE(scaled);
    EXPECT_EQ(scaled->getWidth(), 3U);
    EXPECT_EQ(getReferences(*spy->lastOut), 1U);
}

TEST_F(BitmapViewTest, ScalingThatFailsIsEmptyWithoutABitmapToGoOnWith) {
    answerAssertions(true);
    const auto spy = getSpy(5, 5);
    spy->refusal = tov::FAILURE;
    EXPECT_FALSE(spy->asImage()->scale(3, 2));
    EXPECT_EQ(assertions().size(), 1U);
}

TEST_F(BitmapViewTest, ScalingThatSucceedsAssertsNothing) {
    EXPECT_TRUE(linked(FIT_BITMAP, 5, 5, 24)->asImage()->scale(2, 2));
    EXPECT_TRUE(assertions().empty());
    EXPECT_TRUE(records().empty());
}
