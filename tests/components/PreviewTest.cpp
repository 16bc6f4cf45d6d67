// Previews: a copy of the source, scaled once per size and kept.
#include <zqx/img/FreeImage.h>
#include <zqx/img/ImageProcessingPipeline.h>

#include "components/support/Bitmaps.h"
#include "components/support/ComponentTest.h"

namespace {

using namespace test;
using zqx::img::Image;
using LinkedPipeline = zqx::img::ImageProcessingPipeline;

/// An image that notes when it is scaled; the copies are of one grey.
class ScaleCounter : public Image {
public:
    explicit ScaleCounter(std::size_t width, std::size_t height) : Image(width, height, Image::SGRAY8, 1) {
        for (std::size_t y = 0; y < height; ++y) {
            std::fill_n(static_cast<unsigned char*>(getRowPtr(y)), width, static_cast<unsigned char>(100));
        }
    }

    std::shared_ptr<Image> scale(std::size_t width, std::size_t height) override {
        sizes.emplace_back(width, height);
        last = std::make_shared<ScaleCounter>(width, height);
        return last;
    }

    std::vector<std::pair<std::size_t, std::size_t>> sizes;
    std::shared_ptr<ScaleCounter> last;
};

/// Notes which execution a preview goes through.
class ExecutionSpy : public LinkedPipeline {
public:
    ExecutionSpy() : LinkedPipeline(ALL_STAGES) {}
    using LinkedPipeline::execute;

    tov::Result execute(IFreeImage** pOutImage) override {
        ++calls;
        return answer != 0 ? answer : LinkedPipeline::execute(pOutImage);
    }

    tov::Result answer = 0;
    int calls = 0;
};

tov::TovRef<LinkedPipeline> pipelineOver(const std::shared_ptr<Image>& source) {
    tov::TovRef pipeline(LinkedPipeline::create());
    pipeline->setActiveStages(0);
    pipeline->setInputImage(source);
    return pipeline;
}

Bitmap getPreview(IImageProcessingPipeline& pipeline, unsigned int width, unsigned int height) {
    Bitmap out;
    EXPECT_EQ(pipeline.executePreview(width, height, out.receive()), 0U);
    return out;
}

class PreviewTest : public ComponentTest {};

} // namespace

TEST_F(PreviewTest, PreviewHasExactlyTheSizeAskedFor) {
    const Pipeline pipeline = newPipeline();
    ASSERT_EQ(pipeline->setInputImage(painted(10, 4).get()), 0U);
    const Bitmap preview = getPreview(*pipeline, 3, 7);
    EXPECT_EQ(readWidth(*preview), 3);
    EXPECT_EQ(readHeight(*preview), 7);
    EXPECT_EQ(getDepth(*preview), 24);
    EXPECT_EQ(getReferences(*preview), 1U);
    EXPECT_TRUE(records().empty());
}

TEST_F(PreviewTest, PreviewIsTheLanczosCopyOfTheSource) {
    const Pipeline pipeline = newPipeline();
    const Bitmap source = painted(10, 5);
    pipeline->setActiveStages(0);
    ASSERT_EQ(pipeline->setInputImage(source.get()), 0U);
    Bitmap rescaled;
    ASSERT_EQ(source->rescale(4, 3, 5, rescaled.receive()), 0U);
    const Bitmap preview = getPreview(*pipeline, 4, 3);
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 4; ++x) {
            EXPECT_EQ(pixelAt(*preview, x, y), pixelAt(*rescaled, x, y));
        }
    }
}

TEST_F(PreviewTest, PreviewRunsTheStages) {
    const Pipeline pipeline = newPipeline();
    ASSERT_EQ(pipeline->setInputImage(allocated(FIT_BITMAP, 8, 8, 24).get()), 0U);
    pipeline->setActiveStages(1);
    pipeline->setInversionEnabled(1);
    EXPECT_EQ(pixelAt(*getPreview(*pipeline, 2, 2), 0, 0), (Pixel{1.0F, 1.0F, 1.0F, 1.0F}));
}

TEST_F(PreviewTest, SameSizeScalesOnce) {
    const auto source = std::make_shared<ScaleCounter>(8, 8);
    const auto pipeline = pipelineOver(source);
    getPreview(*pipeline, 200, 100);
    getPreview(*pipeline, 200, 100);
    EXPECT_EQ(source->sizes.size(), 1U);
    EXPECT_EQ(source->last->sizes.size(), 0U) << "the copy itself is not scaled";
}

TEST_F(PreviewTest, AnotherWidthOrHeightScalesTheSourceAgain) {
    const auto source = std::make_shared<ScaleCounter>(8, 8);
    const auto pipeline = pipelineOver(source);
    getPreview(*pipeline, 200, 100);
    getPreview(*pipeline, 100, 50);
    getPreview(*pipeline, 100, 60);
    getPreview(*pipeline, 110, 60);
    getPreview(*pipeline, 200, 100);
    using Sizes = std::vector<std::pair<std::size_t, std::size_t>>;
    EXPECT_EQ(source->sizes, (Sizes{{200, 100}, {100, 50}, {100, 60}, {110, 60}, {200, 100}}));
}

TEST_F(PreviewTest, OldPreviewIsDroppedWhenTheSizeChanges) {
    const auto source = std::make_shared<ScaleCounter>(8, 8);
    const auto pipeline = pipelineOver(source);
    getPreview(*pipeline, 20, 10);
    std::weak_ptr<Image> old = source->last;
    source->last.reset();
    EXPECT_FALSE(old.expired()) << "it is kept for the next time";
    getPreview(*pipeline, 10, 5);
    EXPECT_TRUE(old.expired());
}

TEST_F(PreviewTest, NewInputDropsThePreview) {
    const auto source = std::make_shared<ScaleCounter>(8, 8);
    const auto pipeline = pipelineOver(source);
    getPreview(*pipeline, 20, 10);
    pipeline->setInputImage(source);
    getPreview(*pipeline, 20, 10);
    EXPECT_EQ(source->sizes.size(), 2U);
    const Bitmap bitmap = painted(4, 4);
    EXPECT_EQ(pipeline->setInputImage(bitmap.get()), 0U);
    EXPECT_EQ(getDepth(*getPreview(*pipeline, 20, 10)), 24) << "of the new source";
}

TEST_F(PreviewTest, ParametersDoNotDropThePreview) {
    const auto source = std::make_shared<ScaleCounter>(8, 8);
    const auto pipeline = pipelineOver(source);
    getPreview(*pipeline, 20, 10);
    pipeline->setActiveStages(65535);
    pipeline->setSharpness(0.5F);
    pipeline->setFlipVertical(1);
    getPreview(*pipeline, 20, 10);
    EXPECT_EQ(source->sizes.size(), 1U);
}

TEST_F(PreviewTest, KeptPreviewDoesNotSeeChangesOfTheSource) {
    const Pipeline pipeline = newPipeline();
    const Bitmap source = allocated(FIT_BITMAP, 4, 4, 24);
    pipeline->setActiveStages(0);
    ASSERT_EQ(pipeline->setInputImage(source.get()), 0U);
    const Pixel black = {0.0F, 0.0F, 0.0F, 1.0F};
    EXPECT_EQ(pixelAt(*getPreview(*pipeline, 2, 2), 0, 0), black);
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x) {
            setPixel(*source, x, y, {1.0F, 1.0F, 1.0F, 1.0F});
        }
    }
    EXPECT_EQ(pixelAt(*getPreview(*pipeline, 2, 2), 0, 0), black);
    EXPECT_EQ(pixelAt(*getPreview(*pipeline, 3, 3), 0, 0), (Pixel{1.0F, 1.0F, 1.0F, 1.0F}));
}

TEST_F(PreviewTest, EveryPreviewIsABitmapOfItsOwn) {
    const Pipeline pipeline = newPipeline();
    ASSERT_EQ(pipeline->setInputImage(painted(4, 4).get()), 0U);
    const Bitmap first = getPreview(*pipeline, 2, 2);
    const Bitmap second = getPreview(*pipeline, 2, 2);
    EXPECT_NE(first.get(), second.get());
    EXPECT_EQ(getReferences(*first), 1U);
}

TEST_F(PreviewTest, PreviewLeavesTheSourceForTheNextExecution) {
    const Pipeline pipeline = newPipeline();
    pipeline->setActiveStages(0);
    const Bitmap source = painted(5, 4);
    ASSERT_EQ(pipeline->setInputImage(source.get()), 0U);
    getPreview(*pipeline, 2, 2);
    Bitmap full;
    ASSERT_EQ(pipeline->execute(full.receive()), 0U);
    EXPECT_TRUE(isPainted(*full, 5, 4));
    EXPECT_EQ(getReferences(*source), 2U) << "the pipeline's view, and the host's";
}

TEST_F(PreviewTest, PreviewGoesThroughTheObjectsOwnExecute) {
    const tov::TovRef pipeline(new ExecutionSpy);
    pipeline->setInputImage(std::make_shared<ScaleCounter>(4, 4));
    getPreview(*pipeline, 2, 2);
    EXPECT_EQ(pipeline->calls, 1);
    pipeline->answer = 7;
    IFreeImage* out = nullptr;
    EXPECT_EQ(pipeline->executePreview(2, 2, &out), 7U) << "its result is the preview's";
    pipeline->answer = 0x80001234;
    EXPECT_EQ(pipeline->executePreview(2, 2, &out), 0x80001234U);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(logTexts(), Texts{endText(0x80001234)});
}

TEST_F(PreviewTest, FailingExecutionRestoresTheSource) {
    const tov::TovRef pipeline(new ExecutionSpy);
    pipeline->setInputImage(std::make_shared<ScaleCounter>(4, 4));
    pipeline->answer = 0x80004005;
    IFreeImage* out = nullptr;
    EXPECT_EQ(pipeline->executePreview(2, 2, &out), 0x80004005U);
    pipeline->answer = 0;
    Bitmap full;
    ASSERT_EQ(pipeline->execute(full.receive()), 0U);
    EXPECT_EQ(readWidth(*full), 4);
}

TEST_F(PreviewTest, SourceIsCheckedBeforeThePointer) {
    const Pipeline pipeline = newPipeline();
    IFreeImage* out = nullptr;
    EXPECT_EQ(pipeline->executePreview(2, 2, nullptr), 0x80000100U);
    EXPECT_EQ(pipeline->executePreview(2, 2, &out), 0x80000100U);
    EXPECT_EQ(logTexts(), (Texts{"mSrcImage.get()", "mSrcImage.get()"}));
    clearLog();
    ASSERT_EQ(pipeline->setInputImage(painted(2, 2).get()), 0U);
    EXPECT_EQ(pipeline->executePreview(2, 2, nullptr), 0x80070057U);
    EXPECT_EQ(logTexts(), Texts{"pPreviewImage"});
}

TEST_F(PreviewTest, ImageThatCannotScaleHasNoPreview) {
    const auto pipeline = pipelineOver(std::make_shared<Image>(4, 4, Image::SGRAY8, 1));
    IFreeImage* out = nullptr;
    EXPECT_EQ(pipeline->executePreview(2, 2, &out), 0x80000100U);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(logTexts(), (Texts{"mSrcImage", endText(0x80000100)}));
    Bitmap full;
    EXPECT_EQ(pipeline->execute(full.receive()), 0U) << "the source is back";
}

TEST_F(PreviewTest, FailedScalingIsTriedAgain) {
    const Pipeline pipeline = newPipeline();
    ASSERT_EQ(pipeline->setInputImage(painted(4, 4).get()), 0U);
    IFreeImage* out = nullptr;
    EXPECT_EQ(pipeline->executePreview(0, 2, &out), 0x80000100U);
    EXPECT_EQ(pipeline->executePreview(0, 2, &out), 0x80000100U);
    EXPECT_EQ(assertions(), Texts(2, qutil::tovStrError(0x80070057)));
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(readWidth(*getPreview(*pipeline, 2, 2)), 2);
}

TEST_F(PreviewTest, FailedScalingStaysWithoutPreviewWhenTheHandlerGoesOn) {
    answerAssertions(true);
    const Pipeline pipeline = newPipeline();
    ASSERT_EQ(pipeline->setInputImage(painted(4, 4).get()), 0U);
    IFreeImage* out = nullptr;
    EXPECT_EQ(pipeline->executePreview(2, 0, &out), 0x80000100U);
    EXPECT_EQ(out, nullptr);
}

TEST_F(PreviewTest, PreviewOfALinearSourceIsLinear) {
    class LinearSource : public Image {
    public:
        LinearSource() : Image(1, 1, Image::GRAY8, 1) { *static_cast<unsigned char*>(getDataPtr()) = 255; }
        std::shared_ptr<Image> scale(std::size_t width, std::size_t height) override {
            auto scaled = std::make_shared<Image>(width, height, Image::GRAY8, 1);
            *static_cast<unsigned char*>(scaled->getDataPtr()) = 64;
            return scaled;
        }
    };
    const auto pipeline = pipelineOver(std::make_shared<LinearSource>());
    EXPECT_NEAR(bytesOfLine(*getPreview(*pipeline, 1, 1), 0, 1)[0], 64, 2) << "encoded it would be 136";
}

TEST_F(PreviewTest, PipelineReleasesSourceAndPreviewAtItsEnd) {
    const Bitmap source = painted(4, 4);
    {
        const Pipeline pipeline = newPipeline();
        ASSERT_EQ(pipeline->setInputImage(source.get()), 0U);
        getPreview(*pipeline, 2, 2);
        EXPECT_EQ(getReferences(*source), 2U);
    }
    EXPECT_EQ(getReferences(*source), 1U);
}
