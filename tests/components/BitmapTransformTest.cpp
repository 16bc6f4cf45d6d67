// Transforms of the bitmap component: what each hands out, and what is checked in which order.
#include <functional>

#include <zqx/img/FreeImage.h>

#include "components/support/Bitmaps.h"
#include "components/support/ComponentTest.h"
#include "components/support/ForeignBitmap.h"
#include "components/support/HeaderOnly.h"

namespace {

using namespace test;
using LinkedBitmap = zqx::img::FreeImage;

/// A transform that hands out a bitmap.
struct Transform {
    std::string name;
    std::function<tov::Result(IFreeImage&, IFreeImage**)> run;
    /// Whether a null out-pointer is an error that is noticed.
    bool checksPointer;
};

std::vector<Transform> transforms() {
    return {
        {"Rotate", [](IFreeImage& b, IFreeImage** out) { return b.rotate(90.0, out); }, true},
        {"Rescale", [](IFreeImage& b, IFreeImage** out) { return b.rescale(4, 4, FILTER_BOX, out); }, true},
        {"Copy", [](IFreeImage& b, IFreeImage** out) { return b.copy(0, 0, 1, 1, out); }, true},
        {"Composite", [](IFreeImage& b, IFreeImage** out) { return b.composite(out); }, true},
        {"CompositeBackgroundColor",
         [](IFreeImage& b, IFreeImage** out) { return b.compositeBackgroundColor({}, out); }, true},
        {"CompositeBackgroundImage",
         [](IFreeImage& b, IFreeImage** out) { return b.compositeBackgroundImage(painted(2, 2).get(), out); }, true},
        {"ConvertTo24Bits", [](IFreeImage& b, IFreeImage** out) { return b.convertTo24Bits(out); }, true},
        {"ConvertTo32Bits", [](IFreeImage& b, IFreeImage** out) { return b.convertTo32Bits(out); }, true},
        {"ConvertToStandardType", [](IFreeImage& b, IFreeImage** out) { return b.convertToStandardType(out, 1); },
         false},
        {"ConvertToType", [](IFreeImage& b, IFreeImage** out) { return b.convertToType(out, FIT_BITMAP, 1); }, false},
    };
}

class BitmapTransformTest : public ComponentTest {};
class EveryTransformTest : public ComponentTest, public testing::WithParamInterface<Transform> {};

INSTANTIATE_TEST_SUITE_P(Transforms, EveryTransformTest, testing::ValuesIn(transforms()),
                         [](const auto& tested) { return tested.param.name; });

/// Opaque in the upper row, clear in the lower one.
Bitmap halfClear() {
    Bitmap bitmap = painted(2, 2, 32);
    for (int x = 0; x < 2; ++x) {
        Pixel clear = colorAt(x, 1);
        clear.a = 0.0F;
        setPixel(*bitmap, x, 1, clear);
    }
    return bitmap;
}

} // namespace

// --- What all have in common

TEST_P(EveryTransformTest, ResultIsANewComponentWithOneReference) {
    const Bitmap bitmap = halfClear();
    IFreeImage* out = nullptr;
    ASSERT_EQ(GetParam().run(*bitmap, &out), 0U);
    ASSERT_NE(out, nullptr);
    EXPECT_NE(out, bitmap.get());
    EXPECT_EQ(getReferences(*out), 1U);
    EXPECT_GT(readWidth(*out), 0);
    EXPECT_EQ(out->release(), 0U);
    EXPECT_EQ(getReferences(*bitmap), 1U);
    EXPECT_TRUE(records().empty());
}

TEST_P(EveryTransformTest, SourceIsNotChanged) {
    const Bitmap bitmap = painted(2, 2, 32);
    Bitmap out;
    ASSERT_EQ(GetParam().run(*bitmap, out.receive()), 0U);
    EXPECT_TRUE(isPainted(*bitmap, 2, 2));
}

TEST_P(EveryTransformTest, EmptyObjectIsNotReady) {
    const Bitmap bitmap = newBitmap();
    IFreeImage* out = bitmap.get();
    EXPECT_EQ(GetParam().run(*bitmap, &out), 0x80000100U);
    EXPECT_EQ(out, bitmap.get()) << "it is not written";
}

TEST_P(EveryTransformTest, NullOutPointerIsCheckedBeforeTheBitmapOrNotAtAll) {
    EXPECT_EQ(GetParam().run(*newBitmap(), nullptr), GetParam().checksPointer ? 0x80070057U : 0x80000100U);
    if (GetParam().checksPointer) {
        EXPECT_EQ(GetParam().run(*painted(2, 2), nullptr), 0x80070057U);
    }
}

// --- One by one

TEST_F(BitmapTransformTest, RotationIsCounterClockwise) {
    Bitmap out;
    ASSERT_EQ(painted(3, 2)->rotate(90.0, out.receive()), 0U);
    EXPECT_EQ(readWidth(*out), 2);
    EXPECT_EQ(readHeight(*out), 3);
    EXPECT_EQ(pixelAt(*out, 0, 0), colorAt(2, 0)) << "top right has moved to the top left";
    EXPECT_EQ(pixelAt(*out, 1, 2), colorAt(0, 1));
}

TEST_F(BitmapTransformTest, RotationByHalfATurnMirrorsBothWays) {
    Bitmap out;
    ASSERT_EQ(painted(3, 2)->rotate(180.0, out.receive()), 0U);
    EXPECT_EQ(pixelAt(*out, 0, 0), colorAt(2, 1));
}

TEST_F(BitmapTransformTest, RescaledBitmapHasExactlyTheSize) {
    Bitmap out;
    ASSERT_EQ(painted(9, 5)->rescale(4, 7, FILTER_LANCZOS3, out.receive()), 0U);
    EXPECT_EQ(readWidth(*out), 4);
    EXPECT_EQ(readHeight(*out), 7);
    EXPECT_EQ(getDepth(*out), 24);
}

TEST_F(BitmapTransformTest, RescalePassesTheFilterOn) {
    const Bitmap bitmap = painted(9, 9);
    Bitmap box;
    Bitmap lanczos;
    ASSERT_EQ(bitmap->rescale(4, 4, FILTER_BOX, box.receive()), 0U);
    ASSERT_EQ(bitmap->rescale(4, 4, FILTER_LANCZOS3, lanczos.receive()), 0U);
    bool differs = false;
    for (int x = 0; x < 4; ++x) {
        differs = differs || !(pixelAt(*box, x, 1) == pixelAt(*lanczos, x, 1));
    }
    EXPECT_TRUE(differs);
}

TEST_F(BitmapTransformTest, RescaleChecksTheSizeBeforeAnythingElse) {
    EXPECT_EQ(newBitmap()->rescale(0, 10, 0, nullptr), 0x80070057U);
    EXPECT_EQ(logTexts(), Texts{endText(0x80070057)}) << "the size is wrong, no pointer is named";
    IFreeImage* out = nullptr;
    EXPECT_EQ(newBitmap()->rescale(0, 10, 0, &out), 0x80070057U);
    EXPECT_EQ(newBitmap()->rescale(10, 0, 0, &out), 0x80070057U);
    EXPECT_EQ(painted(2, 2)->rescale(-5, 10, 0, &out), 0x80070057U);
    EXPECT_EQ(painted(2, 2)->rescale(10, -5, 0, &out), 0x80070057U);
    EXPECT_EQ(out, nullptr);
}

TEST_F(BitmapTransformTest, CopyTakesTheRectangleBeforeRightAndBottom) {
    Bitmap out;
    ASSERT_EQ(painted(5, 4)->copy(1, 2, 4, 4, out.receive()), 0U);
    EXPECT_EQ(readWidth(*out), 3);
    EXPECT_EQ(readHeight(*out), 2);
    EXPECT_EQ(pixelAt(*out, 0, 0), colorAt(1, 2));
    EXPECT_EQ(pixelAt(*out, 2, 1), colorAt(3, 3));
}

TEST_F(BitmapTransformTest, CopyOutsideTheBitmapFails) {
    const Bitmap bitmap = painted(5, 4);
    IFreeImage* out = bitmap.get();
    EXPECT_EQ(bitmap->copy(0, 0, 6, 4, &out), 0x80004005U);
    EXPECT_EQ(bitmap->copy(-1, 0, 2, 2, &out), 0x80004005U);
    EXPECT_EQ(out, bitmap.get());
}

TEST_F(BitmapTransformTest, TransformsThatTheLibraryRefusesFail) {
    const Bitmap pixelless = headerOnly(4, 4, 24);
    IFreeImage* out = nullptr;
    EXPECT_EQ(pixelless->rotate(90.0, &out), 0x80004005U);
    EXPECT_EQ(pixelless->rescale(2, 2, 0, &out), 0x80004005U);
    EXPECT_EQ(pixelless->copy(0, 0, 1, 1, &out), 0x80004005U);
    EXPECT_EQ(pixelless->convertTo24Bits(&out), 0x80004005U);
    EXPECT_EQ(pixelless->convertTo32Bits(&out), 0x80004005U);
    EXPECT_EQ(painted(2, 2)->composite(&out), 0x80004005U) << "24 bits have no alpha";
    EXPECT_EQ(painted(2, 2)->compositeBackgroundColor({}, &out), 0x80004005U);
    EXPECT_EQ(allocated(FIT_RGBF, 2, 2, 96)->convertToStandardType(&out, 1), 0x80004005U);
    EXPECT_EQ(allocated(FIT_RGBF, 2, 2, 96)->convertToType(&out, FIT_COMPLEX, 1), 0x80004005U);
    EXPECT_EQ(out, nullptr);
}

TEST_F(BitmapTransformTest, PasteReplacesARectangle) {
    const Bitmap target = allocated(FIT_BITMAP, 4, 4, 24);
    EXPECT_EQ(target->paste(painted(2, 2).get(), 1, 2, 256), 0U);
    EXPECT_EQ(pixelAt(*target, 1, 2), colorAt(0, 0));
    EXPECT_EQ(pixelAt(*target, 2, 3), colorAt(1, 1));
    EXPECT_EQ(pixelAt(*target, 0, 0), (Pixel{0.0F, 0.0F, 0.0F, 1.0F}));
}

TEST_F(BitmapTransformTest, PasteOfAlphaZeroKeepsTheTarget) {
    const Bitmap target = painted(2, 2);
    EXPECT_EQ(target->paste(allocated(FIT_BITMAP, 2, 2, 24).get(), 0, 0, 0), 0U);
    EXPECT_TRUE(isPainted(*target, 2, 2));
}

TEST_F(BitmapTransformTest, PasteChecksSourceThenTargetThenTheSourcesBitmap) {
    const auto foreign = ForeignBitmap::create();
    const Bitmap empty = newBitmap();
    const Bitmap target = painted(2, 2);
    EXPECT_EQ(empty->paste(nullptr, 0, 0, 256), 0x80070057U);
    EXPECT_EQ(empty->paste(foreign.get(), 0, 0, 256), 0x80000100U);
    EXPECT_EQ(empty->paste(empty.get(), 0, 0, 256), 0x80000100U);
    EXPECT_EQ(target->paste(foreign.get(), 0, 0, 256), 0x80070057U);
    EXPECT_EQ(target->paste(empty.get(), 0, 0, 256), 0x80070057U);
    EXPECT_EQ(foreign->calls, 0);
    EXPECT_EQ(logTexts(),
              (Texts{"pSource", endText(0x80000100), endText(0x80000100), endText(0x80070057), endText(0x80070057)}));
}

TEST_F(BitmapTransformTest, PasteBeyondTheEdgeFails) {
    const Bitmap target = painted(2, 2);
    EXPECT_EQ(target->paste(painted(2, 2).get(), 1, 1, 256), 0x80004005U);
    EXPECT_TRUE(isPainted(*target, 2, 2));
}

TEST_F(BitmapTransformTest, CompositeUsesTheBackgroundColourOfTheFile) {
    const tov::TovRef bitmap(LinkedBitmap::create());
    bitmap->allocate(FIT_BITMAP, 1, 1, 32);
    RGBQUAD background = {10, 20, 30, 0};
    FreeImage_SetBackgroundColor(bitmap->getBitmap(), &background);
    Bitmap out;
    ASSERT_EQ(bitmap->composite(out.receive()), 0U);
    EXPECT_EQ(getDepth(*out), 24);
    EXPECT_EQ(bytesOfLine(*out, 0, 3), (std::vector<int>{10, 20, 30}));
}

TEST_F(BitmapTransformTest, CompositeOverAColourShowsItWhereTheBitmapIsClear) {
    Bitmap out;
    ASSERT_EQ(halfClear()->compositeBackgroundColor({0.2F, 2.0F, 0.999F, 1.0F}, out.receive()), 0U);
    EXPECT_EQ(pixelAt(*out, 0, 0), colorAt(0, 0));
    EXPECT_EQ(bytesOfLine(*out, 0, 3), (std::vector<int>{254, 255, 51})) << "truncated, and limited above";
}

TEST_F(BitmapTransformTest, CompositeOverAnImageShowsItWhereTheBitmapIsClear) {
    const Bitmap background = allocated(FIT_BITMAP, 2, 2, 24);
    setPixel(*background, 1, 1, {0.2F, 0.4F, 0.6F, 1.0F});
    Bitmap out;
    ASSERT_EQ(halfClear()->compositeBackgroundImage(background.get(), out.receive()), 0U);
    EXPECT_EQ(pixelAt(*out, 1, 0), colorAt(1, 0));
    EXPECT_EQ(pixelAt(*out, 1, 1), pixelAt(*background, 1, 1));
    EXPECT_EQ(pixelAt(*out, 0, 1), (Pixel{0.0F, 0.0F, 0.0F, 1.0F}));
}

TEST_F(BitmapTransformTest, CompositeOverAnImageOfAnotherSizeFails) {
    IFreeImage* out = nullptr;
    EXPECT_EQ(halfClear()->compositeBackgroundImage(painted(3, 3).get(), &out), 0x80004005U);
    EXPECT_EQ(out, nullptr);
}

TEST_F(BitmapTransformTest, CompositeOverAnImageChecksPointerThenBitmapThenBackground) {
    const auto foreign = ForeignBitmap::create();
    const Bitmap empty = newBitmap();
    const Bitmap bitmap = halfClear();
    IFreeImage* out = nullptr;
    EXPECT_EQ(empty->compositeBackgroundImage(nullptr, nullptr), 0x80070057U);
    EXPECT_EQ(empty->compositeBackgroundImage(nullptr, &out), 0x80000100U);
    EXPECT_EQ(empty->compositeBackgroundImage(foreign.get(), &out), 0x80000100U);
    EXPECT_EQ(bitmap->compositeBackgroundImage(nullptr, &out), 0x80070057U);
    EXPECT_EQ(bitmap->compositeBackgroundImage(foreign.get(), &out), 0x80070057U);
    EXPECT_EQ(bitmap->compositeBackgroundImage(empty.get(), &out), 0x80070057U);
    EXPECT_EQ(foreign->calls, 0);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(logTexts(), (Texts{"pOut", endText(0x80000100), endText(0x80000100), "pBackground", endText(0x80070057),
                                 endText(0x80070057)}));
}

TEST_F(BitmapTransformTest, ConversionTo32BitsIsOpaque) {
    Bitmap out;
    ASSERT_EQ(painted(3, 2)->convertTo32Bits(out.receive()), 0U);
    EXPECT_EQ(getDepth(*out), 32);
    EXPECT_TRUE(isPainted(*out, 3, 2));
}

TEST_F(BitmapTransformTest, ConversionTo24BitsDropsAlpha) {
    Bitmap out;
    ASSERT_EQ(halfClear()->convertTo24Bits(out.receive()), 0U);
    EXPECT_EQ(getDepth(*out), 24);
    EXPECT_TRUE(isPainted(*out, 2, 2));
}

TEST_F(BitmapTransformTest, ConversionToStandardTypePassesTheScalingOn) {
    const Bitmap bitmap = allocated(FIT_UINT16, 2, 1, 16);
    auto* values = reinterpret_cast<std::uint16_t*>(getLine(*bitmap, 0));
    values[0] = 100;
    values[1] = 200;
    Bitmap scaled;
    Bitmap plain;
    ASSERT_EQ(bitmap->convertToStandardType(scaled.receive(), 1), 0U);
    ASSERT_EQ(bitmap->convertToStandardType(plain.receive(), 0), 0U);
    EXPECT_EQ(getDepth(*scaled), 8);
    EXPECT_EQ(bytesOfLine(*scaled, 0, 2), (std::vector<int>{0, 255}));
    EXPECT_EQ(bytesOfLine(*plain, 0, 2), (std::vector<int>{100, 200}));
}

TEST_F(BitmapTransformTest, ConversionToATypePassesTypeAndScalingOn) {
    Bitmap floats;
    ASSERT_EQ(painted(2, 2)->convertToType(floats.receive(), FIT_RGBF, 1), 0U);
    EXPECT_EQ(detectType(*floats), FIT_RGBF);
    EXPECT_NEAR(pixelAt(*floats, 1, 1).r, colorAt(1, 1).r, 1e-6F);
    const Bitmap numbers = allocated(FIT_UINT16, 2, 1, 16);
    reinterpret_cast<std::uint16_t*>(getLine(*numbers, 0))[1] = 200;
    Bitmap plain;
    ASSERT_EQ(numbers->convertToType(plain.receive(), FIT_BITMAP, 0), 0U);
    EXPECT_EQ(bytesOfLine(*plain, 0, 2), (std::vector<int>{0, 200}));
}

TEST_F(BitmapTransformTest, PremultiplicationChangesTheBitmapItself) {
    const Bitmap bitmap = halfClear();
    EXPECT_EQ(bitmap->preMultiplyWithAlpha(), 0U);
    EXPECT_EQ(pixelAt(*bitmap, 1, 0), colorAt(1, 0));
    EXPECT_EQ(pixelAt(*bitmap, 1, 1), (Pixel{0.0F, 0.0F, 0.0F, 0.0F}));
}

TEST_F(BitmapTransformTest, PremultiplicationNeedsABitmapWithAlpha) {
    EXPECT_EQ(newBitmap()->preMultiplyWithAlpha(), 0x80000100U);
    EXPECT_EQ(painted(2, 2)->preMultiplyWithAlpha(), 0x80004005U);
}
