// A bitmap that was loaded without its pixels has a size and nothing else. Every method answers; none reads or writes
// what is not there.
#include <zqx/img/FreeImage.h>
#include <zqx/img/ImageProcessingPipeline.h>

#include "components/support/Bitmaps.h"
#include "components/support/ComponentTest.h"
#include "components/support/FakeStreams.h"
#include "components/support/HeaderOnly.h"

namespace {

using namespace test;
using LinkedBitmap = zqx::img::FreeImage;
using zqx::img::Image;

/// Every depth that has a way of its own somewhere.
class PixellessTest : public ComponentTest, public testing::WithParamInterface<std::uint32_t> {
protected:
    Bitmap mBitmap = headerOnly(4, 3, GetParam());
    /// A layout whose pixels are read and written as floats.
    bool hasFloatAccess() const { return GetParam() >= 24; }
};

INSTANTIATE_TEST_SUITE_P(Depths, PixellessTest, testing::Values(8U, 24U, 32U),
                         [](const auto& tested) { return std::to_string(tested.param); });

/// A method that hands a bitmap out.
struct Transform {
    const char* name;
    tov::Result (*call)(IFreeImage&, IFreeImage**);
};

constexpr Transform TRANSFORMS[] = {
    {"rotate", [](IFreeImage& b, IFreeImage** out) { return b.rotate(90.0, out); }},
    {"rotate by any angle", [](IFreeImage& b, IFreeImage** out) { return b.rotate(12.5, out); }},
    {"rescale", [](IFreeImage& b, IFreeImage** out) { return b.rescale(2, 2, FILTER_LANCZOS3, out); }},
    {"rescale to the same size", [](IFreeImage& b, IFreeImage** out) { return b.rescale(4, 3, FILTER_BOX, out); }},
    {"copy", [](IFreeImage& b, IFreeImage** out) { return b.copy(0, 0, 2, 2, out); }},
    {"composite", [](IFreeImage& b, IFreeImage** out) { return b.composite(out); }},
    {"compositeBackgroundColor",
     [](IFreeImage& b, IFreeImage** out) {
         return b.compositeBackgroundColor({0.5F, 0.5F, 0.5F, 1.0F}, out);
     }},
    {"compositeBackgroundImage",
     [](IFreeImage& b, IFreeImage** out) { return b.compositeBackgroundImage(painted(4, 3).get(), out); }},
    {"convertTo24Bits", [](IFreeImage& b, IFreeImage** out) { return b.convertTo24Bits(out); }},
    {"convertTo32Bits", [](IFreeImage& b, IFreeImage** out) { return b.convertTo32Bits(out); }},
    {"convertToType", [](IFreeImage& b, IFreeImage** out) { return b.convertToType(out, FIT_RGBAF, 1); }},
    {"convertToType of its own", [](IFreeImage& b, IFreeImage** out) { return b.convertToType(out, FIT_BITMAP, 1); }},
};

} // namespace

TEST_P(PixellessTest, SizesAndKindAreKnown) {
    EXPECT_EQ(readWidth(*mBitmap), 4);
    EXPECT_EQ(readHeight(*mBitmap), 3);
    EXPECT_EQ(getDepth(*mBitmap), static_cast<int>(GetParam()));
    EXPECT_EQ(detectType(*mBitmap), FIT_BITMAP);
    EXPECT_GT(computePitch(*mBitmap), 0);
    zqx::qfreeimage::ColorType type{};
    EXPECT_EQ(mBitmap->getColorType(&type), 0U);
    int index = 0;
    EXPECT_EQ(mBitmap->getTransparentIndex(&index), 0U);
    EXPECT_EQ(index, -1);
    tov::Sequence<qutil::EColor3f> palette{};
    EXPECT_EQ(mBitmap->getPalette(&palette), GetParam() == 8 ? 0U : 1U);
    tov::tovFree(palette.data);
    EXPECT_EQ(mBitmap->setMetaData("<x/>"), 0U);
}

TEST_P(PixellessTest, PixelsAreNeitherReadNorWritten) {
    const tov::Result answer = hasFloatAccess() ? 0x80004005U : 0x80000101U;
    Pixel pixel{7.0F, 7.0F, 7.0F, 7.0F};
    EXPECT_EQ(mBitmap->getPixelF(1, 1, &pixel.r, &pixel.g, &pixel.b, &pixel.a), answer);
    EXPECT_EQ(pixel, (Pixel{7.0F, 7.0F, 7.0F, 7.0F}));
    EXPECT_EQ(mBitmap->setPixelF(1, 1, 0.5F, 0.5F, 0.5F, 0.5F), answer);
    EXPECT_EQ(logTexts(), Texts{}) << "single pixels are not logged";
    qutil::EColor4f color{};
    EXPECT_EQ(mBitmap->getPixelColor(1, 1, &color), 0x80004005U);
    float values[16] = {};
    EXPECT_EQ(mBitmap->setScanlineF(0, {16, values}), answer);
    void* line = this;
    EXPECT_EQ(mBitmap->getScanline(0, &line), 0x80004005U);
    EXPECT_EQ(line, nullptr);
}

TEST_P(PixellessTest, SamplesAreZero) {
    for (const int mode : {0, 1}) {
        Pixel pixel{7.0F, 7.0F, 7.0F, 7.0F};
        EXPECT_EQ(mBitmap->sampleF(0.5F, 0.5F, mode, &pixel.r, &pixel.g, &pixel.b, &pixel.a), 0U);
        EXPECT_EQ(pixel, (Pixel{0.0F, 0.0F, 0.0F, 0.0F})) << mode;
    }
}

TEST_P(PixellessTest, ThereAreNoBytesToHash) {
    int hash = -9;
    EXPECT_EQ(mBitmap->getHash(&hash), 0x80000100U);
    EXPECT_EQ(hash, -9);
}

TEST_P(PixellessTest, TransformsFail) {
    for (const Transform& transform : TRANSFORMS) {
        IFreeImage* out = nullptr;
        EXPECT_EQ(transform.call(*mBitmap, &out), 0x80004005U) << transform.name;
        EXPECT_EQ(out, nullptr) << transform.name;
    }
    EXPECT_EQ(mBitmap->preMultiplyWithAlpha(), 0x80004005U);
}

TEST_P(PixellessTest, NothingIsPastedOrComposedWithIt) {
    const Bitmap whole = painted(4, 3, 32);
    EXPECT_EQ(mBitmap->paste(whole.get(), 0, 0, 256), 0x80004005U);
    EXPECT_EQ(whole->paste(mBitmap.get(), 0, 0, 256), 0x80004005U);
    EXPECT_EQ(whole->paste(mBitmap.get(), 0, 0, 100), 0x80004005U);
    IFreeImage* out = nullptr;
    EXPECT_EQ(whole->compositeBackgroundImage(mBitmap.get(), &out), 0x80004005U);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(pixelAt(*whole, 0, 0), colorAt(0, 0));
}

TEST_P(PixellessTest, StandardTypeOfAStandardBitmapIsACopyWithoutPixelsToo) {
    Bitmap out;
    EXPECT_EQ(mBitmap->convertToStandardType(out.receive(), 1), 0U);
    void* line = nullptr;
    EXPECT_EQ(readWidth(*out), 4);
    EXPECT_EQ(out->getScanline(0, &line), 0x80004005U);
}

TEST_P(PixellessTest, NothingIsSavedOfIt) {
    const TemporaryDirectory directory;
    EXPECT_EQ(mBitmap->save(FIF_PNG, directory.file("a.png").c_str(), 0), 0x80004005U);
    const auto stream = FakeOutputStream::create();
    EXPECT_EQ(mBitmap->saveToStream(stream.get(), FIF_PNG, 0), 0x80004005U);
    EXPECT_TRUE(stream->writes.empty());
}

TEST_P(PixellessTest, SystemGetsNoHandleOfIt) {
    void* handle = this;
    EXPECT_EQ(mBitmap->convertToHBitmap(&handle), 0x80004005U);
    EXPECT_EQ(handle, this);
}

TEST_P(PixellessTest, OtherBitmapsTakeItsPlace) {
    EXPECT_EQ(mBitmap->allocate(FIT_BITMAP, 2, 2, 24), 0U);
    EXPECT_EQ(pixelAt(*mBitmap, 1, 1), (Pixel{0.0F, 0.0F, 0.0F, 1.0F}));
    EXPECT_EQ(headerOnly(4, 3, GetParam())->unload(), 0U);
}

TEST_P(PixellessTest, ItsViewIsEmpty) {
    auto* linked = dynamic_cast<LinkedBitmap*>(mBitmap.get());
    ASSERT_NE(linked, nullptr);
    const std::shared_ptr<Image> view = linked->asImage();
    EXPECT_EQ(view->getDataPtr(), nullptr);
    EXPECT_EQ(view->getWidth(), 0U);
    EXPECT_EQ(view->getHeight(), 0U);
    EXPECT_EQ(view->getByteRowStride(), 0U);
    EXPECT_FALSE(view->scale(2, 2));
    EXPECT_EQ(assertions(), Texts{qutil::tovStrError(0x80004005)});
}

TEST_P(PixellessTest, PipelineHasNothingToRender) {
    const Pipeline pipeline = newPipeline();
    ASSERT_EQ(pipeline->setInputImage(mBitmap.get()), 0U);
    IFreeImage* out = nullptr;
    EXPECT_EQ(pipeline->execute(&out), 0x80004005U);
    EXPECT_EQ(pipeline->executePreview(2, 2, &out), 0x80000100U);
    EXPECT_EQ(out, nullptr);
}

TEST_P(PixellessTest, PipelineGoesOnWithAnEmptyBitmapWhenTheHandlerSaysSo) {
    answerAssertions(true);
    const Pipeline pipeline = newPipeline();
    ASSERT_EQ(pipeline->setInputImage(mBitmap.get()), 0U);
    pipeline->setSharpness(1.0F);
    pipeline->setInversionEnabled(1);
    pipeline->setFlipHorizontal(1);
    pipeline->setFlipVertical(1);
    Bitmap out;
    EXPECT_EQ(pipeline->execute(out.receive()), 0U);
    ASSERT_TRUE(out);
    EXPECT_TRUE(isEmpty(*out));
}
