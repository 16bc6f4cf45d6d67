// The pipeline through its interface: parameters, sources and results.
#include <cmath>
#include <cstring>
#include <limits>

#include <zqx/img/FreeImage.h>
#include <zqx/img/ImageProcessingPipeline.h>

#include "components/support/Bitmaps.h"
#include "components/support/ComponentTest.h"
#include "components/support/ForeignBitmap.h"

namespace {

using namespace test;
using zqx::img::Color;
using zqx::img::EColorGradingParams;
using zqx::img::Image;
using LinkedPipeline = zqx::img::ImageProcessingPipeline;

constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

EColorGradingParams getDefaults(IImageProcessingPipeline& pipeline) {
    EColorGradingParams params{};
    EXPECT_EQ(pipeline.getDefaultColorGradingParams(&params), 0U);
    return params;
}

EColorGradingParams getParams(IImageProcessingPipeline& pipeline) {
    EColorGradingParams params{};
    EXPECT_EQ(pipeline.getColorGradingParams(&params), 0U);
    return params;
}

/// Values field by field, in the order of the record.
std::vector<float> getValues(const EColorGradingParams& params) {
    std::vector<float> values(14);
    static_assert(sizeof params == 14 * sizeof(float));
    std::memcpy(values.data(), &params, sizeof params);
    return values;
}

template <typename Get>
int getFlag(IImageProcessingPipeline& pipeline, const Get& get) {
    int flag = -1;
    EXPECT_EQ((pipeline.*get)(&flag), 0U);
    return flag;
}

/// The pipeline's result; empty when it failed.
Bitmap getResult(IImageProcessingPipeline& pipeline) {
    Bitmap out;
    EXPECT_EQ(pipeline.execute(out.receive()), 0U);
    return out;
}

/// A pipeline without stages over pixels of one row.
class Source {
public:
    Source(Image::Format format, std::size_t width, std::vector<unsigned char> bytes)
        : mBytes(std::move(bytes)), mPipeline(LinkedPipeline::create()) {
        mPipeline->setActiveStages(0);
        mPipeline->setInputImage(std::make_shared<Image>(mBytes.data(), width, std::size_t{1}, format, std::size_t{0}));
    }

    IImageProcessingPipeline& pipeline() { return *mPipeline; }

private:
    std::vector<unsigned char> mBytes;
    tov::TovRef<LinkedPipeline> mPipeline;
};

/// What a linear byte becomes on its way through an encoded one, by the rules of the two encodings.
int throughEncoding(int byte) {
    const auto encoded = static_cast<unsigned char>(255.0F * std::pow(static_cast<float>(byte) / 255.0F, 0.45454544F));
    return static_cast<int>(255.0F * zqx::img::srgb2linear(encoded));
}

class PipelineComponentTest : public ComponentTest {};

/// One field of the grading record: what is set and what is read back.
struct Field {
    const char* name;
    float EColorGradingParams::*member;
    float low;
    float high;
};

class GradingFieldTest : public ComponentTest, public testing::WithParamInterface<Field> {
protected:
    float readBack(float value) const {
        const Pipeline pipeline = newPipeline();
        EColorGradingParams params = getDefaults(*pipeline);
        params.*GetParam().member = value;
        EXPECT_EQ(pipeline->setColorGradingParams(params), 0U);
        return getParams(*pipeline).*GetParam().member;
    }
};

INSTANTIATE_TEST_SUITE_P(Fields, GradingFieldTest,
                         testing::Values(Field{"Exposure", &EColorGradingParams::exposure, -5.0F, 5.0F},
                                         Field{"Contrast", &EColorGradingParams::contrast, 0.0F, 1.0F},
                                         Field{"Highlight", &EColorGradingParams::highlight, -1.0F, 1.0F},
                                         Field{"Shadow", &EColorGradingParams::shadow, -1.0F, 1.0F},
                                         Field{"Temperature", &EColorGradingParams::temperature, 2500.0F, 10500.0F},
                                         Field{"Hue", &EColorGradingParams::hue, -180.0F, 180.0F},
                                         Field{"Saturation", &EColorGradingParams::saturation, 0.0F, 2.0F},
                                         Field{"GradientMapIntensity", &EColorGradingParams::gradientMapIntensity, 0.0F,
                                               1.0F}),
                         [](const auto& tested) { return tested.param.name; });

} // namespace

// --- Grading record

TEST_F(PipelineComponentTest, NewPipelineHasTheDefaultGrading) {
    const Pipeline pipeline = newPipeline();
    EXPECT_EQ(getValues(getParams(*pipeline)), getValues(getDefaults(*pipeline)));
    EXPECT_EQ(getValues(getDefaults(*pipeline)), (std::vector<float>{0.0F, 0.5F, 0.0F, 0.0F, 6500.0F, 0.0F, 1.0F, 0.0F,
                                                                     0.0F, 0.0F, 0.0F, 1.0F, 1.0F, 1.0F}));
}

TEST_F(PipelineComponentTest, DefaultsDoNotFollowThePresentGrading) {
    const Pipeline pipeline = newPipeline();
    EColorGradingParams params = getDefaults(*pipeline);
    params.exposure = 2.0F;
    params.black = {0.5F, 0.5F, 0.5F};
    ASSERT_EQ(pipeline->setColorGradingParams(params), 0U);
    EXPECT_EQ(getDefaults(*pipeline).exposure, 0.0F);
    EXPECT_EQ(getDefaults(*pipeline).black.r, 0.0F);
}

TEST_P(GradingFieldTest, ValuesInsideTheRangeComeBack) {
    const Field& field = GetParam();
    const float quarter = field.low + (field.high - field.low) * 0.25F;
    for (const float value : {field.low, quarter, field.high}) {
        EXPECT_EQ(readBack(value), value);
    }
}

TEST_P(GradingFieldTest, ValuesOutsideTheRangeComeBackLimited) {
    EXPECT_EQ(readBack(GetParam().high * 3.0F + 1.0F), GetParam().high);
    EXPECT_EQ(readBack(GetParam().low - std::fabs(GetParam().low) * 2.0F - 1.0F), GetParam().low);
    EXPECT_EQ(readBack(std::numeric_limits<float>::infinity()), GetParam().high);
    EXPECT_EQ(readBack(-std::numeric_limits<float>::infinity()), GetParam().low);
}

TEST_P(GradingFieldTest, NaNPassesThrough) {
    EXPECT_TRUE(std::isnan(readBack(NOT_A_NUMBER)));
}

TEST_F(PipelineComponentTest, HighlightAndShadowReachEightTimesAsFarOnOneSide) {
    struct Case {
        float outside;
        float inside;
    };
    const tov::TovRef pipeline(LinkedPipeline::create());
    EColorGradingParams params = getDefaults(*pipeline);
    for (const Case& each : {Case{1.0F, 8.0F}, Case{0.5F, 4.0F}, Case{-1.0F, -1.0F}, Case{-0.5F, -0.5F},
                             Case{0.0F, 0.0F}, Case{2.0F, 8.0F}, Case{-3.0F, -1.0F}}) {
        params.highlight = each.outside;
        params.shadow = -each.outside;
        ASSERT_EQ(pipeline->setColorGradingParams(params), 0U);
        EXPECT_EQ(pipeline->getColorGrading().getHighlight(), each.inside);
        EXPECT_EQ(pipeline->getColorGrading().getShadow(), -each.inside);
    }
}

TEST_F(PipelineComponentTest, OtherValuesAreTheSameInside) {
    const tov::TovRef pipeline(LinkedPipeline::create());
    const EColorGradingParams params{1.5F, 0.6F, 0.0F, 0.0F, 5000.0F, -20.0F, 1.2F, 0.3F, {}, {}};
    ASSERT_EQ(pipeline->setColorGradingParams(params), 0U);
    const zqx::img::ColorGrading& grading = pipeline->getColorGrading();
    EXPECT_EQ(grading.getExposure(), 1.5F);
    EXPECT_EQ(grading.getContrast(), 0.6F);
    EXPECT_EQ(grading.getTemperature(), 5000.0F);
    EXPECT_EQ(grading.getHue(), -20.0F);
    EXPECT_EQ(grading.getSaturation(), 1.2F);
    EXPECT_EQ(grading.getGradientMapIntensity(), 0.3F);
}

TEST_F(PipelineComponentTest, GradientColoursAreEncodedOutsideAndLinearInside) {
    const tov::TovRef pipeline(LinkedPipeline::create());
    EColorGradingParams params = getDefaults(*pipeline);
    params.black = {0.1F, 0.2F, 0.3F};
    params.white = {0.9F, 0.8F, 0.7F};
    ASSERT_EQ(pipeline->setColorGradingParams(params), 0U);
    const Color black = Color{0.1F, 0.2F, 0.3F, 1.0F}.toLinear();
    const Color white = Color{0.9F, 0.8F, 0.7F, 1.0F}.toLinear();
    const zqx::img::ColorGradient& gradient = pipeline->getColorGrading().getGradientMap();
    EXPECT_EQ(gradient.compare(zqx::img::ColorGradient(black, white)), 0);
    EXPECT_EQ(gradient.getColorAt(0).compare(black), 0);
    EXPECT_EQ(gradient.getColorAt(255).compare(white), 0);
    EXPECT_EQ(gradient.getColorAt(0).a, 1.0F);
    EXPECT_EQ(gradient.getColorAt(255).a, 1.0F);
    const EColorGradingParams back = getParams(*pipeline);
    EXPECT_EQ(back.black.g, black.toSrgb().g);
    EXPECT_EQ(back.white.b, white.toSrgb().b);
}

TEST_F(PipelineComponentTest, BlackAndWhiteComeBackUnchanged) {
    const Pipeline pipeline = newPipeline();
    EColorGradingParams params = getDefaults(*pipeline);
    ASSERT_EQ(pipeline->setColorGradingParams(params), 0U);
    EXPECT_EQ(getValues(getParams(*pipeline)), getValues(params));
    params.black = {1.0F, 1.0F, 1.0F};
    params.white = {0.0F, 0.0F, 0.0F};
    ASSERT_EQ(pipeline->setColorGradingParams(params), 0U);
    EXPECT_EQ(getValues(getParams(*pipeline)), getValues(params));
}

TEST_F(PipelineComponentTest, GradientOfManyStopsIsReadAtItsEnds) {
    const tov::TovRef pipeline(LinkedPipeline::create());
    zqx::img::ColorGrading grading;
    grading.setGradientMap(zqx::img::ColorGradient(
        std::vector<Color>{{0.0F, 0.0F, 1.0F, 1.0F}, {0.0F, 1.0F, 0.0F, 1.0F}, {1.0F, 0.0F, 0.0F, 1.0F}}));
    pipeline->setColorGrading(grading);
    const EColorGradingParams params = getParams(*pipeline);
    EXPECT_EQ(params.black.b, 1.0F);
    EXPECT_EQ(params.black.g, 0.0F);
    EXPECT_EQ(params.white.r, 1.0F);
    EXPECT_EQ(params.white.g, 0.0F);
}

// --- Other parameters

TEST_F(PipelineComponentTest, FlagsAreTrueForAnythingButZero) {
    const Pipeline pipeline = newPipeline();
    for (const auto& [input, expected] : {std::pair(1, 1), std::pair(0, 0), std::pair(-5, 1), std::pair(256, 1)}) {
        EXPECT_EQ(pipeline->setInversionEnabled(input), 0U);
        EXPECT_EQ(pipeline->setFlipHorizontal(input), 0U);
        EXPECT_EQ(pipeline->setFlipVertical(input), 0U);
        EXPECT_EQ(getFlag(*pipeline, &IImageProcessingPipeline::getInversionEnabled), expected);
        EXPECT_EQ(getFlag(*pipeline, &IImageProcessingPipeline::getFlipHorizontal), expected);
        EXPECT_EQ(getFlag(*pipeline, &IImageProcessingPipeline::getFlipVertical), expected);
    }
}

TEST_F(PipelineComponentTest, NewPipelineIsNeutral) {
    const Pipeline pipeline = newPipeline();
    EXPECT_EQ(getFlag(*pipeline, &IImageProcessingPipeline::getInversionEnabled), 0);
    EXPECT_EQ(getFlag(*pipeline, &IImageProcessingPipeline::getFlipHorizontal), 0);
    EXPECT_EQ(getFlag(*pipeline, &IImageProcessingPipeline::getFlipVertical), 0);
    EXPECT_EQ(getFlag(*pipeline, &IImageProcessingPipeline::getActiveStages), 65535);
    float sharpness = -1.0F;
    EXPECT_EQ(pipeline->getSharpness(&sharpness), 0U);
    EXPECT_EQ(sharpness, 0.0F);
}

TEST_F(PipelineComponentTest, StagesAreStoredAsGiven) {
    const Pipeline pipeline = newPipeline();
    for (const int stages : {0, 9, 65535, -1, std::numeric_limits<int>::min()}) {
        EXPECT_EQ(pipeline->setActiveStages(stages), 0U);
        EXPECT_EQ(getFlag(*pipeline, &IImageProcessingPipeline::getActiveStages), stages);
    }
}

TEST_F(PipelineComponentTest, SharpnessIsLimitedAndNaNPasses) {
    const Pipeline pipeline = newPipeline();
    float sharpness = 0.0F;
    for (const auto& [input, expected] : {std::pair(0.25F, 0.25F), std::pair(3.0F, 1.0F), std::pair(-7.0F, -1.0F)}) {
        EXPECT_EQ(pipeline->setSharpness(input), 0U);
        EXPECT_EQ(pipeline->getSharpness(&sharpness), 0U);
        EXPECT_EQ(sharpness, expected);
    }
    EXPECT_EQ(pipeline->setSharpness(NOT_A_NUMBER), 0U);
    EXPECT_EQ(pipeline->getSharpness(&sharpness), 0U);
    EXPECT_TRUE(std::isnan(sharpness));
}

// --- Input

TEST_F(PipelineComponentTest, InputIsHeldByOneReferenceUntilItIsReplaced) {
    Pipeline pipeline = newPipeline();
    const Bitmap first = painted(2, 2);
    const Bitmap second = painted(2, 2);
    EXPECT_EQ(pipeline->setInputImage(first.get()), 0U);
    EXPECT_EQ(getReferences(*first), 2U);
    EXPECT_EQ(pipeline->setInputImage(first.get()), 0U);
    EXPECT_EQ(getReferences(*first), 2U);
    EXPECT_EQ(pipeline->setInputImage(second.get()), 0U);
    EXPECT_EQ(getReferences(*first), 1U);
    EXPECT_EQ(getReferences(*second), 2U);
    pipeline.reset();
    EXPECT_EQ(getReferences(*second), 1U);
}

TEST_F(PipelineComponentTest, InputMayBeReleasedByTheHost) {
    const Pipeline pipeline = newPipeline();
    EXPECT_EQ(pipeline->setInputImage(painted(3, 2).get()), 0U);
    pipeline->setActiveStages(0);
    EXPECT_TRUE(isPainted(*getResult(*pipeline), 3, 2));
}

TEST_F(PipelineComponentTest, NullInputIsUnexpected) {
    EXPECT_EQ(newPipeline()->setInputImage(nullptr), 0x8000FFFFU);
    ASSERT_EQ(records().size(), 2U);
    EXPECT_EQ(records()[0].level, 0);
    EXPECT_EQ(records()[1].text, endText(0x8000FFFF));
}

TEST_F(PipelineComponentTest, ForeignInputIsUnexpectedAndTheOldOneStays) {
    const Pipeline pipeline = newPipeline();
    const auto foreign = ForeignBitmap::create();
    pipeline->setActiveStages(0);
    ASSERT_EQ(pipeline->setInputImage(painted(3, 2).get()), 0U);
    EXPECT_EQ(pipeline->setInputImage(foreign.get()), 0x8000FFFFU);
    EXPECT_EQ(getReferences(*foreign), 1U);
    EXPECT_EQ(foreign->calls, 0);
    EXPECT_TRUE(isPainted(*getResult(*pipeline), 3, 2));
}

// --- Execution

TEST_F(PipelineComponentTest, SourceIsCheckedBeforeThePointer) {
    const Pipeline pipeline = newPipeline();
    IFreeImage* out = nullptr;
    EXPECT_EQ(pipeline->execute(nullptr), 0x80000100U);
    EXPECT_EQ(pipeline->execute(&out), 0x80000100U);
    EXPECT_EQ(logTexts(), (Texts{"mSrcImage", "mSrcImage"}));
    clearLog();
    ASSERT_EQ(pipeline->setInputImage(painted(2, 2).get()), 0U);
    EXPECT_EQ(pipeline->execute(nullptr), 0x80070057U);
    EXPECT_EQ(logTexts(), Texts{"pOutImage"});
}

TEST_F(PipelineComponentTest, ResultIsANewBitmapWithOneReference) {
    const Pipeline pipeline = newPipeline();
    const Bitmap source = painted(3, 2);
    ASSERT_EQ(pipeline->setInputImage(source.get()), 0U);
    IFreeImage* first = nullptr;
    IFreeImage* second = nullptr;
    ASSERT_EQ(pipeline->execute(&first), 0U);
    ASSERT_EQ(pipeline->execute(&second), 0U);
    EXPECT_NE(first, second);
    EXPECT_NE(first, source.get());
    EXPECT_EQ(detectType(*first), FIT_BITMAP);
    EXPECT_EQ(first->release(), 0U);
    EXPECT_EQ(second->release(), 0U);
    EXPECT_EQ(getReferences(*source), 2U);
}

TEST_F(PipelineComponentTest, WithoutStagesBitmapsAreCopied) {
    const Pipeline pipeline = newPipeline();
    pipeline->setActiveStages(0);
    for (const int depth : {24, 32}) {
        ASSERT_EQ(pipeline->setInputImage(painted(5, 3, depth).get()), 0U);
        const Bitmap out = getResult(*pipeline);
        EXPECT_EQ(getDepth(*out), depth);
        EXPECT_TRUE(isPainted(*out, 5, 3)) << "upright, and to the byte";
    }
    const Bitmap grey = allocated(FIT_BITMAP, 2, 1, 8);
    getLine(*grey, 0)[1] = 77;
    ASSERT_EQ(pipeline->setInputImage(grey.get()), 0U);
    EXPECT_EQ(bytesOfLine(*getResult(*pipeline), 0, 2), (std::vector<int>{0, 77}));
}

TEST_F(PipelineComponentTest, SourceIsReadAnewByEveryExecution) {
    const Pipeline pipeline = newPipeline();
    const Bitmap source = painted(2, 2);
    pipeline->setActiveStages(0);
    ASSERT_EQ(pipeline->setInputImage(source.get()), 0U);
    setPixel(*source, 0, 0, {1.0F, 1.0F, 1.0F, 1.0F});
    EXPECT_EQ(pixelAt(*getResult(*pipeline), 0, 0), (Pixel{1.0F, 1.0F, 1.0F, 1.0F}));
}

TEST_F(PipelineComponentTest, FlipsMirrorThePicture) {
    const Pipeline pipeline = newPipeline();
    ASSERT_EQ(pipeline->setInputImage(painted(3, 2).get()), 0U);
    pipeline->setActiveStages(16);
    pipeline->setFlipHorizontal(1);
    EXPECT_EQ(pixelAt(*getResult(*pipeline), 0, 0), colorAt(2, 0));
    pipeline->setFlipVertical(1);
    EXPECT_EQ(pixelAt(*getResult(*pipeline), 0, 0), colorAt(2, 1));
    pipeline->setFlipHorizontal(0);
    EXPECT_EQ(pixelAt(*getResult(*pipeline), 0, 0), colorAt(0, 1));
    pipeline->setActiveStages(0);
    EXPECT_EQ(pixelAt(*getResult(*pipeline), 0, 0), colorAt(0, 0));
}

TEST_F(PipelineComponentTest, InversionInvertsColourAndNotAlpha) {
    const Pipeline pipeline = newPipeline();
    ASSERT_EQ(pipeline->setInputImage(allocated(FIT_BITMAP, 2, 2, 32).get()), 0U);
    pipeline->setActiveStages(1);
    pipeline->setInversionEnabled(1);
    EXPECT_EQ(pixelAt(*getResult(*pipeline), 0, 0), (Pixel{1.0F, 1.0F, 1.0F, 0.0F}));
}

TEST_F(PipelineComponentTest, GradingRunsThroughTheInterface) {
    const Pipeline pipeline = newPipeline();
    const Bitmap source = allocated(FIT_BITMAP, 1, 1, 24);
    setPixel(*source, 0, 0, {0.5F, 0.5F, 0.5F, 1.0F});
    ASSERT_EQ(pipeline->setInputImage(source.get()), 0U);
    EColorGradingParams params = getDefaults(*pipeline);
    params.exposure = 5.0F;
    ASSERT_EQ(pipeline->setColorGradingParams(params), 0U);
    EXPECT_EQ(pixelAt(*getResult(*pipeline), 0, 0), (Pixel{1.0F, 1.0F, 1.0F, 1.0F}));
}

TEST_F(PipelineComponentTest, EncodedSourcesGiveEncodedBytes) {
    Source rgb(Image::SRGB8, 2, {10, 20, 30, 128, 129, 255});
    EXPECT_EQ(bytesOfLine(*getResult(rgb.pipeline()), 0, 6), (std::vector<int>{30, 20, 10, 255, 129, 128}));
    Source grey(Image::SGRAY8, 3, {1, 128, 254});
    EXPECT_EQ(bytesOfLine(*getResult(grey.pipeline()), 0, 3), (std::vector<int>{1, 128, 254}));
    Source rgba(Image::SRGBA8, 1, {10, 20, 30, 40});
    EXPECT_EQ(bytesOfLine(*getResult(rgba.pipeline()), 0, 4), (std::vector<int>{30, 20, 10, 40}));
}

TEST_F(PipelineComponentTest, LinearSourcesGiveLinearBytes) {
    const auto expected = throughEncoding;
    Source rgb(Image::RGB8, 2, {10, 20, 30, 128, 129, 255});
    EXPECT_EQ(
        bytesOfLine(*getResult(rgb.pipeline()), 0, 6),
        (std::vector<int>{expected(30), expected(20), expected(10), expected(255), expected(129), expected(128)}));
    Source grey(Image::GRAY8, 3, {1, 128, 254});
    EXPECT_EQ(bytesOfLine(*getResult(grey.pipeline()), 0, 3),
              (std::vector<int>{expected(1), expected(128), expected(254)}));
    Source rgba(Image::RGBA8, 1, {10, 20, 30, 40});
    EXPECT_EQ(bytesOfLine(*getResult(rgba.pipeline()), 0, 4),
              (std::vector<int>{expected(30), expected(20), expected(10), 40}))
        << "alpha is linear already";
    EXPECT_NEAR(expected(128), 128, 2) << "far from the encoded 186";
    EXPECT_TRUE(assertions().empty());
}

TEST_F(PipelineComponentTest, EveryLinearByteGoesThroughTheEncoding) {
    std::vector<unsigned char> bytes(256);
    std::vector<int> expected(256);
    for (int i = 0; i < 256; ++i) {
        bytes[static_cast<std::size_t>(i)] = static_cast<unsigned char>(i);
        expected[static_cast<std::size_t>(i)] = throughEncoding(i);
    }
    Source source(Image::GRAY8, 256, bytes);
    EXPECT_EQ(bytesOfLine(*getResult(source.pipeline()), 0, 256), expected);
}

TEST_F(PipelineComponentTest, RowZeroOfAnImageIsTheBottomLineOfTheResult) {
    const std::vector<unsigned char> bytes = {1, 2};
    const tov::TovRef pipeline(LinkedPipeline::create());
    pipeline->setActiveStages(0);
    pipeline->setInputImage(
        std::make_shared<Image>(const_cast<unsigned char*>(bytes.data()), 1U, 2U, Image::SGRAY8, 1U));
    const Bitmap out = getResult(*pipeline);
    EXPECT_EQ(bytesOfLine(*out, 0, 1), std::vector<int>{1});
    EXPECT_EQ(bytesOfLine(*out, 1, 1), std::vector<int>{2});
}

TEST_F(PipelineComponentTest, DepthThatStandardBitmapsDoNotHaveIsTheLibrarysBusiness) {
    // 96 bits a pixel are asked for, and 8 are what the library makes of it: grey, linear as the source.
    const std::vector<float> white(3, 1.0F);
    const tov::TovRef pipeline(LinkedPipeline::create());
    pipeline->setActiveStages(0);
    pipeline->setInputImage(std::make_shared<Image>(const_cast<float*>(white.data()), 1U, 1U, Image::RGB32F, 12U));
    const Bitmap out = getResult(*pipeline);
    EXPECT_EQ(getDepth(*out), 8);
    EXPECT_EQ(bytesOfLine(*out, 0, 1), std::vector<int>{255});
    EXPECT_TRUE(assertions().empty());
}

TEST_F(PipelineComponentTest, ResultThatIsNoEightBitPictureIsAssertedAndLeftAlone) {
    for (const bool goOn : {false, true}) {
        answerAssertions(goOn);
        const std::size_t before = assertions().size();
        const Pipeline pipeline = newPipeline();
        pipeline->setActiveStages(0);
        ASSERT_EQ(pipeline->setInputImage(allocated(FIT_UINT16, 2, 2, 16).get()), 0U);
        const Bitmap out = getResult(*pipeline);
        EXPECT_EQ(getDepth(*out), 16);
        ASSERT_EQ(assertions().size(), before + 1);
        EXPECT_EQ(assertions().back(), "!\"unexpected image format\"");
    }
}

// --- Allocation that fails

namespace {

/// A source far too large for any bitmap, over memory that is never touched.
tov::TovRef<LinkedPipeline> pipelineOverHugeSource(Image::Format format) {
    static unsigned char dummy[16] = {};
    tov::TovRef pipeline(LinkedPipeline::create());
    pipeline->setInputImage(std::make_shared<Image>(dummy, 0x7fffffffU, 0x7fffffffU, format, 16U));
    return pipeline;
}

} // namespace

TEST_F(PipelineComponentTest, FailingAllocationIsAssertedAndItsCodeReturned) {
    answerAssertions(false);
    const auto pipeline = pipelineOverHugeSource(Image::RGB8);
    IFreeImage* out = nullptr;
    EXPECT_EQ(pipeline->execute(&out), 0x80004005U);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(assertions(), Texts{qutil::tovStrError(0x80004005)});
    EXPECT_EQ(logTexts().back(), endText(0x80004005));
    EXPECT_EQ(records().back().file, "src/zqx/img/ImageProcessingPipeline");
}

TEST_F(PipelineComponentTest, FailingAllocationGivesAnEmptyBitmapWhenTheHandlerGoesOn) {
    answerAssertions(true);
    const auto pipeline = pipelineOverHugeSource(Image::SRGB8);
    IFreeImage* out = nullptr;
    ASSERT_EQ(pipeline->execute(&out), 0U);
    ASSERT_NE(out, nullptr);
    EXPECT_TRUE(isEmpty(*out));
    EXPECT_EQ(assertions(), Texts{qutil::tovStrError(0x80004005)});
    EXPECT_EQ(out->release(), 0U);
}

TEST_F(PipelineComponentTest, EmptyBitmapOfALinearSourceIsAssertedAsWell) {
    answerAssertions(true);
    const auto pipeline = pipelineOverHugeSource(Image::RGB8);
    Bitmap out;
    EXPECT_EQ(pipeline->execute(out.receive()), 0U);
    EXPECT_EQ(assertions(), (Texts{qutil::tovStrError(0x80004005), "!\"unexpected image format\""}));
}

// --- Sizes that are cut where they are taken for an int

namespace {

struct BeyondInt {
    const char* name;
    std::size_t width;
    std::size_t height;
    std::size_t pixelStride;
};

/// A few pixels wide to whoever looks at the low bits.
constexpr std::size_t CUT_TO_FIVE = (std::size_t{1} << 32U) + 5;

/// A view of another size than its memory, which nobody looks at.
class WideView : public Image {
public:
    explicit WideView(const BeyondInt& size) {
        setView(mDummy, size.width, size.height, Image::SRGB8, size.pixelStride, size.width);
    }

private:
    unsigned char mDummy[16] = {};
};

} // namespace

TEST_F(PipelineComponentTest, SourcesBeyondAnIntAreRefusedAsThoseBeyondMemoryAre) {
    for (const BeyondInt& size : {BeyondInt{"width", CUT_TO_FIVE, 1, 3}, BeyondInt{"height", 1, CUT_TO_FIVE, 3},
                                  BeyondInt{"stride", 1, 1, CUT_TO_FIVE}, BeyondInt{"bits", 1, 1, 0x20000003}}) {
        const std::size_t before = assertions().size();
        const tov::TovRef pipeline(LinkedPipeline::create());
        pipeline->setActiveStages(0);
        pipeline->setInputImage(std::make_shared<WideView>(size));
        IFreeImage* out = nullptr;
        EXPECT_EQ(pipeline->execute(&out), 0x80004005U) << size.name;
        EXPECT_EQ(out, nullptr) << size.name;
        ASSERT_EQ(assertions().size(), before + 1) << size.name;
        EXPECT_EQ(assertions().back(), qutil::tovStrError(0x80004005));
        EXPECT_EQ(logTexts().back(), endText(0x80004005));
    }
}

// --- A whole session

TEST_F(PipelineComponentTest, HostGradesAFileIntoAnotherThroughInterfaces) {
    const TemporaryDirectory directory;
    ASSERT_EQ(painted(8, 6)->save(FIF_PNG, directory.file("in.png").c_str(), 0), 0U);
    const Bitmap source = newBitmap();
    ASSERT_EQ(source->load(-1, directory.file("in.png").c_str(), 0), 0U);
    const Pipeline pipeline = newPipeline();
    ASSERT_EQ(pipeline->setInputImage(source.get()), 0U);
    pipeline->setActiveStages(16);
    pipeline->setFlipVertical(1);
    const Bitmap out = getResult(*pipeline);
    ASSERT_EQ(out->save(FIF_PNG, directory.file("out.png").c_str(), 0), 0U);
    const Bitmap back = newBitmap();
    ASSERT_EQ(back->load(-1, directory.file("out.png").c_str(), 0), 0U);
    EXPECT_EQ(pixelAt(*back, 3, 0), colorAt(3, 5));
    EXPECT_TRUE(records().empty());
}
