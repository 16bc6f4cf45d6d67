// The chain of adjustments: which stages run, in which order, into which format.
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/ImageProcessingPipeline.h>

#include "oracle/Grade.h"
#include "oracle/Invert.h"
#include "oracle/Sharpen.h"
#include "oracle/Turn.h"
#include "unit/support/Compare.h"
#include "unit/support/Fill.h"
#include "unit/support/Gradings.h"
#include "unit/support/GuardedImage.h"
#include "unit/support/Literal.h"

namespace {

using namespace test;
using Bytes = std::vector<int>;
using Pipeline = zqx::img::ImageProcessingPipeline;
using zqx::img::Channel;

constexpr long ALL_STAGES = 65535;
constexpr std::uint32_t NULL_ARGUMENT = 0x80070057U;

/// What a pipeline is told to do, for the library and for the literal chain below.
struct Look {
    long stages = ALL_STAGES;
    bool invert = false;
    unsigned channels = 7;
    oracle::Settings grading;
    float sharpness = 0.0F;
    bool flipX = false;
    bool flipY = false;
};

Pipeline getPipeline(const Look& look, const Image& source) {
    Pipeline pipeline(look.stages);
    pipeline.setInputImage(std::make_shared<Image>(source));
    pipeline.setInversionEnabled(look.invert ? 1 : 0);
    pipeline.setInversionChannels(static_cast<Channel>(look.channels));
    pipeline.setColorGrading(makeGrading(look.grading));
    pipeline.setSharpness(look.sharpness);
    pipeline.setFlipHorizontal(look.flipX ? 1 : 0);
    pipeline.setFlipVertical(look.flipY ? 1 : 0);
    return pipeline;
}

void copyPixels(const oracle::Surface& from, const oracle::Surface& to) {
    for (std::size_t y = 0; y < from.height; ++y) {
        std::memcpy(to.at(0, y), from.at(0, y), from.width * from.pixelStride);
    }
}

/// Equal formats are copied, others converted.
void bring(const oracle::Surface& current, const oracle::Surface& out) {
    if (current.format == out.format) {
        copyPixels(current, out);
    } else {
        oracle::convert(current, out);
    }
}

/// Runs an operation from a copy of the current picture, so that the operation may write where it came from.
template <typename Operation>
void runStage(oracle::Surface& current, const oracle::Surface& out, Operation operation) {
    oracle::Picture input(current.width, current.height, current.format);
    copyPixels(current, input.surface);
    operation(input.surface, out);
    current = out;
}

void renderLiterally(const Look& look, oracle::Surface current, const oracle::Surface& out) {
    const void* source = current.data;
    if ((look.stages & 1) != 0 && look.invert) {
        runStage(current, out, bring);
        oracle::invert(out, look.channels);
    }
    if ((look.stages & 6) != 0) {
        runStage(current, out, [&](const oracle::Surface& from, const oracle::Surface& to) {
            oracle::grade(oracle::prepare(look.grading), from, to);
        });
    }
    if ((look.stages & 8) != 0 && look.sharpness > 0.0F) {
        runStage(current, out, [&](const oracle::Surface& from, const oracle::Surface& to) {
            oracle::sharpen(from, to, {1.0F, 5.0F * look.sharpness, 0.02F});
        });
    } else if ((look.stages & 8) != 0 && look.sharpness < 0.0F) {
        runStage(current, out, [&](const oracle::Surface& from, const oracle::Surface& to) {
            oracle::blur(from, to, -6.0F * look.sharpness);
        });
    }
    if (current.data == source) {
        runStage(current, out, bring);
    }
    if ((look.stages & 16) != 0 && look.flipX) {
        runStage(current, out, oracle::mirrorLeftRight);
    }
    if ((look.stages & 16) != 0 && look.flipY) {
        runStage(current, out, oracle::mirrorTopBottom);
    }
}

/// Renders a photograph in every pair of formats. Without a filter the result is exact.
void expectLook(const Look& look) {
    ByteTally tally;
    forAllPairs([&](Image::Format from, Image::Format to) {
        SCOPED_TRACE(getName(from, to));
        GuardedImage source(35, 14, from, {0, 8});
        fillPhoto(source.surface(), from * 16 + to);
        const std::vector<unsigned char> before = source.memory();
        oracle::Picture expected(35, 14, to);
        renderLiterally(look, source.surface(), expected.surface);
        GuardedImage out(35, 14, to, {0, oracle::facts(to).isFloat ? 0U : 6U});

        getPipeline(look, source.image()).execute(out.image());

        if (look.sharpness == 0.0F) {
            EXPECT_TRUE(samePixels(out.surface(), expected.surface));
        } else {
            EXPECT_TRUE(nearPixels(out.surface(), expected.surface, FILTER_TOLERANCE, tally));
        }
        EXPECT_TRUE(out.guardsIntact());
        EXPECT_EQ(before, source.memory()) << "the source changed";
    });
    if (look.sharpness != 0.0F) {
        EXPECT_TRUE(tally.withinBound());
    }
}

oracle::Settings warmGrading() {
    oracle::Settings settings;
    settings.exposure = 0.25F;
    settings.saturation = 1.2F;
    settings.intensity = 0.2F;
    settings.stops = sunsetStops();
    return settings;
}

/// One row of grey bytes through a pipeline.
Bytes rendered(const Look& look, std::initializer_list<unsigned char> greys) {
    BytePicture source(Image::GRAY8, 1, greys);
    const Image out(greys.size(), 1, Image::GRAY8, 1);
    Image view(out);
    getPipeline(look, source.image()).execute(view);
    return getBytes(out);
}

TEST(PipelineTest, StageBitsAreFixed) {
    EXPECT_EQ(1, Pipeline::STAGE_INVERSION);
    EXPECT_EQ(2, Pipeline::STAGE_COLOR_GRADING);
    EXPECT_EQ(4, Pipeline::STAGE_GRADIENT_MAP);
    EXPECT_EQ(8, Pipeline::STAGE_SHARPEN);
    EXPECT_EQ(16, Pipeline::STAGE_FLIP);
    static_assert(!std::is_default_constructible_v<Pipeline>);
}

TEST(PipelineTest, StartsNeutral) {
    Pipeline pipeline(ALL_STAGES);
    int flag = 9;
    float sharpness = 9.0F;
    EXPECT_EQ(7U, static_cast<unsigned>(pipeline.getInversionChannels()));
    EXPECT_EQ(0U, pipeline.getInversionEnabled(&flag));
    EXPECT_EQ(0, flag);
    EXPECT_EQ(0U, pipeline.getSharpness(&sharpness));
    EXPECT_EQ(0.0F, sharpness);
    flag = 9;
    EXPECT_EQ(0U, pipeline.getFlipHorizontal(&flag));
    EXPECT_EQ(0, flag);
    flag = 9;
    EXPECT_EQ(0U, pipeline.getFlipVertical(&flag));
    EXPECT_EQ(0, flag);
    EXPECT_EQ(0U, pipeline.getActiveStages(&flag));
    EXPECT_EQ(65535, flag);
    EXPECT_EQ(0, pipeline.getColorGrading().compare(zqx::img::ColorGrading()));
    EXPECT_TRUE(pipeline.hasDefaultParams());
}

TEST(PipelineTest, ReadersRefuseNullPointers) {
    Pipeline pipeline(ALL_STAGES);
    EXPECT_EQ(NULL_ARGUMENT, pipeline.getInversionEnabled(nullptr));
    EXPECT_EQ(NULL_ARGUMENT, pipeline.getSharpness(nullptr));
    EXPECT_EQ(NULL_ARGUMENT, pipeline.getFlipHorizontal(nullptr));
    EXPECT_EQ(NULL_ARGUMENT, pipeline.getFlipVertical(nullptr));
    EXPECT_EQ(NULL_ARGUMENT, pipeline.getActiveStages(nullptr));
}

TEST(PipelineTest, IntegersCountAsTrueWhenNotZero) {
    for (const int value : {1, -1, 2, 256, std::numeric_limits<int>::min()}) {
        Pipeline pipeline(ALL_STAGES);
        int flag = 0;
        EXPECT_EQ(0U, pipeline.setInversionEnabled(value));
        pipeline.getInversionEnabled(&flag);
        EXPECT_EQ(1, flag) << value;
        EXPECT_EQ(0U, pipeline.setFlipHorizontal(value));
        pipeline.getFlipHorizontal(&flag);
        EXPECT_EQ(1, flag) << value;
        EXPECT_EQ(0U, pipeline.setFlipVertical(value));
        pipeline.getFlipVertical(&flag);
        EXPECT_EQ(1, flag) << value;
    }
}

TEST(PipelineTest, StageMaskIsStoredAsGiven) {
    Pipeline pipeline(0);
    for (const int mask : {0, 21, 65535, -1}) {
        int stored = 99;
        EXPECT_EQ(0U, pipeline.setActiveStages(mask));
        pipeline.getActiveStages(&stored);
        EXPECT_EQ(mask, stored);
    }
}

TEST(PipelineTest, SharpnessIsLimitedToOne) {
    Pipeline pipeline(ALL_STAGES);
    const std::pair<float, float> givenAndStored[] = {{3, 1}, {-7, -1}, {1, 1}, {-1, -1}, {0.3F, 0.3F}};
    for (const auto& [given, stored] : givenAndStored) {
        float sharpness = 9.0F;
        EXPECT_EQ(0U, pipeline.setSharpness(given));
        pipeline.getSharpness(&sharpness);
        EXPECT_EQ(stored, sharpness);
    }
    float sharpness = 0.0F;
    pipeline.setSharpness(std::numeric_limits<float>::quiet_NaN());
    pipeline.getSharpness(&sharpness);
    EXPECT_TRUE(std::isnan(sharpness));
}

TEST(PipelineTest, EachParameterMakesItNotDefault) {
    Pipeline pipeline(ALL_STAGES);
    pipeline.setInversionEnabled(1);
    EXPECT_FALSE(pipeline.hasDefaultParams());
    pipeline.resetParams();
    pipeline.setSharpness(0.1F);
    EXPECT_FALSE(pipeline.hasDefaultParams());
    pipeline.resetParams();
    pipeline.setFlipHorizontal(1);
    EXPECT_FALSE(pipeline.hasDefaultParams());
    pipeline.resetParams();
    pipeline.setFlipVertical(1);
    EXPECT_FALSE(pipeline.hasDefaultParams());
    pipeline.resetParams();
    pipeline.setColorGrading(makeGrading(warmGrading()));
    EXPECT_FALSE(pipeline.hasDefaultParams());
    pipeline.resetParams();
    EXPECT_TRUE(pipeline.hasDefaultParams());
}

TEST(PipelineTest, ChannelsAndStagesDoNotMakeItNotDefault) {
    Pipeline pipeline(0);
    pipeline.setInversionChannels(static_cast<Channel>(8));
    EXPECT_TRUE(pipeline.hasDefaultParams());
}

TEST(PipelineTest, ResetKeepsChannelsStagesAndSource) {
    BytePicture source(Image::GRAY8, 1, {7});
    Pipeline pipeline = getPipeline({}, source.image());
    pipeline.setInversionChannels(static_cast<Channel>(9));
    pipeline.setActiveStages(3);
    pipeline.setColorGrading(makeGrading(warmGrading()));
    pipeline.resetParams();
    int stages = 0;
    pipeline.getActiveStages(&stages);
    EXPECT_EQ(9U, static_cast<unsigned>(pipeline.getInversionChannels()));
    EXPECT_EQ(3, stages);
    EXPECT_EQ(0, pipeline.getColorGrading().compare(zqx::img::ColorGrading()));
    BytePicture out(Image::GRAY8, 1, {0});
    pipeline.execute(out.image());
    EXPECT_EQ((Bytes{7}), getBytes(out.image()));
}

TEST(PipelineTest, CopiesShareTheSource) {
    const auto source = std::make_shared<Image>(2, 2, Image::GRAY8, 1);
    Pipeline pipeline(ALL_STAGES);
    pipeline.setInputImage(source);
    EXPECT_EQ(2, source.use_count());
    {
        const Pipeline copy(pipeline);
        EXPECT_EQ(3, source.use_count());
        const Pipeline moved(std::move(pipeline));
        EXPECT_EQ(3, source.use_count());
    }
    EXPECT_EQ(1, source.use_count());
}

TEST(PipelineTest, WithoutSourceTheDestinationIsLeftAlone) {
    Pipeline pipeline(ALL_STAGES);
    GuardedImage out(4, 3, Image::RGB8);
    pipeline.execute(out.image());
    pipeline.setInputImage(std::make_shared<Image>(4, 3, Image::RGB8, 1));
    pipeline.setInputImage(std::shared_ptr<Image>());
    pipeline.execute(out.image());
    EXPECT_EQ(GuardedImage(4, 3, Image::RGB8).memory(), out.memory());
}

TEST(PipelineTest, AnotherSizeLeavesTheDestinationUntouched) {
    GuardedImage source(4, 3, Image::RGB8);
    Look look;
    look.invert = look.flipX = look.flipY = true;
    for (const auto& [width, height] : {std::pair<std::size_t, std::size_t>{3, 4}, {4, 4}, {5, 3}, {3, 3}}) {
        for (const float sharpness : {-1.0F, 0.0F, 1.0F}) {
            look.sharpness = sharpness;
            GuardedImage out(width, height, Image::RGB8);
            getPipeline(look, source.image()).execute(out.image());
            EXPECT_EQ(GuardedImage(width, height, Image::RGB8).memory(), out.memory());
        }
    }
}

TEST(PipelineTest, WithoutStagesTheSourceIsCopiedOrConverted) {
    Look look;
    look.invert = look.flipX = look.flipY = true;
    look.grading = warmGrading();
    look.sharpness = 0.0F;
    look.stages = 0;
    expectLook(look);
    look.stages = ~31L; // bits without a meaning
    expectLook(look);
}

TEST(PipelineTest, WithoutStagesAnEncodedPictureIsCopiedExactly) {
    GuardedImage source(256, 1, Image::SRGB8);
    fillSweep(source.surface());
    GuardedImage out(256, 1, Image::SRGB8);
    getPipeline({0, false, 7, {}, 0.0F, false, false}, source.image()).execute(out.image());
    EXPECT_TRUE(samePixels(out.image(), source.image()));
}

TEST(PipelineTest, InversionNeedsItsBitAndItsSwitch) {
    EXPECT_EQ((Bytes{155}), rendered({1, true, 7, {}, 0.0F, false, false}, {100}));
    EXPECT_EQ((Bytes{100}), rendered({1, false, 7, {}, 0.0F, false, false}, {100}));
    EXPECT_EQ((Bytes{100}), rendered({0, true, 7, {}, 0.0F, false, false}, {100}));
}

TEST(PipelineTest, InversionActsOnItsChannels) {
    BytePicture source(Image::RGBA8, 1, {10, 20, 30, 40});
    BytePicture out(Image::RGBA8, 1, {0, 0, 0, 0});
    getPipeline({1, true, 9, {}, 0.0F, false, false}, source.image()).execute(out.image());
    EXPECT_EQ((Bytes{245, 20, 30, 215}), getBytes(out.image()));
}

TEST(PipelineTest, InversionInEveryPairOfFormats) {
    expectLook({1, true, 7, {}, 0.0F, false, false});
    expectLook({1, true, 10, {}, 0.0F, false, false});
}

TEST(PipelineTest, EitherGradingBitRunsTheWholeGrading) {
    expectLook({2, false, 7, warmGrading(), 0.0F, false, false});
    expectLook({4, false, 7, warmGrading(), 0.0F, false, false});
}

TEST(PipelineTest, NeutralGradingRunsAllTheSame) {
    GuardedImage source(256, 1, Image::SRGB8);
    fillSweep(source.surface());
    GuardedImage out(256, 1, Image::SRGB8);
    getPipeline({2, false, 7, {}, 0.0F, false, false}, source.image()).execute(out.image());
    EXPECT_FALSE(samePixels(out.image(), source.image())) << "the way over luma and back truncates some codes";
}

TEST(PipelineTest, SharpnessZeroOrNotANumberCopies) {
    EXPECT_EQ((Bytes{100, 200, 3}), rendered({8, false, 7, {}, 0.0F, false, false}, {100, 200, 3}));
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ((Bytes{100, 200, 3}), rendered({8, false, 7, {}, nan, false, false}, {100, 200, 3}));
}

TEST(PipelineTest, SharpnessWithoutItsBitIsIgnored) {
    EXPECT_EQ((Bytes{100, 200, 3}), rendered({0, false, 7, {}, 1.0F, false, false}, {100, 200, 3}));
    EXPECT_EQ((Bytes{100, 200, 3}), rendered({0, false, 7, {}, -1.0F, false, false}, {100, 200, 3}));
}

TEST(PipelineTest, PositiveSharpnessSharpensByFiveTimesItself) {
    expectLook({8, false, 7, {}, 1.0F, false, false});
    expectLook({8, false, 7, {}, 0.5F, false, false});
}

TEST(PipelineTest, NegativeSharpnessBlursBySixTimesItself) {
    expectLook({8, false, 7, {}, -0.5F, false, false});
    expectLook({8, false, 7, {}, -1.0F, false, false});
}

TEST(PipelineTest, FlipsNeedTheirBit) {
    EXPECT_EQ((Bytes{3, 2, 1}), rendered({16, false, 7, {}, 0.0F, true, false}, {1, 2, 3}));
    EXPECT_EQ((Bytes{1, 2, 3}), rendered({15, false, 7, {}, 0.0F, true, true}, {1, 2, 3}));
}

TEST(PipelineTest, BothFlipsTurnByHalf) {
    GuardedImage source(9, 5, Image::SBGR8);
    fillRandom(source.surface(), 50);
    GuardedImage out(9, 5, Image::SBGR8);
    getPipeline({16, false, 7, {}, 0.0F, true, true}, source.image()).execute(out.image());
    EXPECT_TRUE(samePixels(out.image(), *source.image().rotate180()));
}

TEST(PipelineTest, FlipsInEveryPairOfFormats) {
    expectLook({16, false, 7, {}, 0.0F, true, false});
    expectLook({16, false, 7, {}, 0.0F, false, true});
}

TEST(PipelineTest, StagesRunInTheirOrder) {
    expectLook({ALL_STAGES, true, 7, warmGrading(), 0.0F, true, true});
    expectLook({ALL_STAGES, true, 5, warmGrading(), 0.4F, true, false});
    expectLook({ALL_STAGES, true, 15, warmGrading(), -0.2F, false, true});
    expectLook({9, true, 7, {}, 0.4F, false, false});
}

TEST(PipelineTest, ExecutionChangesNothingInThePipeline) {
    GuardedImage source(9, 5, Image::RGB8);
    fillPhoto(source.surface(), 51);
    Look look{ALL_STAGES, true, 7, warmGrading(), 0.5F, true, true};
    const Pipeline pipeline = getPipeline(look, source.image());
    GuardedImage first(9, 5, Image::SRGB8);
    GuardedImage second(9, 5, Image::SRGB8);
    pipeline.execute(first.image());
    pipeline.execute(second.image());
    EXPECT_TRUE(samePixels(first.image(), second.image()));
}

TEST(PipelineTest, ChangedSourcePixelsAreSeenByTheNextExecution) {
    BytePicture source(Image::GRAY8, 1, {10});
    const Pipeline pipeline = getPipeline({0, false, 7, {}, 0.0F, false, false}, source.image());
    BytePicture out(Image::GRAY8, 1, {0});
    pipeline.execute(out.image());
    *static_cast<unsigned char*>(source.image().getDataPtr()) = 20;
    pipeline.execute(out.image());
    EXPECT_EQ((Bytes{20}), getBytes(out.image()));
}

TEST(PipelineTest, ImagesWithoutPixelsAreLeftAlone) {
    const Look look{ALL_STAGES, true, 7, warmGrading(), 0.5F, true, true};
    for (const Image::Format format : ALL_FORMATS) {
        for (const auto& [width, height] : {std::pair<std::size_t, std::size_t>{0, 3}, {3, 0}, {0, 0}}) {
            GuardedImage source(width, height, Image::SRGBA8);
            GuardedImage out(width, height, format);
            getPipeline(look, source.image()).execute(out.image());
            EXPECT_TRUE(out.guardsIntact());
        }
    }
}

TEST(PipelineTest, UnknownFormatsWriteNothing) {
    const Look look{ALL_STAGES, true, 7, warmGrading(), 0.5F, false, false};
    for (const Image::Format unknown : UNKNOWN_FORMATS) {
        GuardedImage strange(4, 3, unknown, {4, 16});
        GuardedImage known(4, 3, Image::RGB8);
        fillPhoto(known.surface(), 52);
        getPipeline(look, known.image()).execute(strange.image());
        EXPECT_TRUE(strange.guardsIntact());
    }
}

} // namespace

TEST(PipelineTest, WhatItHoldsIsReadWithoutChangingIt) {
    const auto source = std::make_shared<Image>(2, 2, Image::SRGB8, 1);
    Pipeline pipeline(5);
    pipeline.setInputImage(source);
    pipeline.setInversionEnabled(7);
    pipeline.setSharpness(-0.25F);
    pipeline.setFlipVertical(1);
    const Pipeline& looked = pipeline;
    static_assert(std::is_same_v<decltype(looked.getInputImage()), std::shared_ptr<const Image>>);
    EXPECT_EQ(looked.getInputImage(), source);
    EXPECT_EQ(looked.getActiveStages(), 5U);
    EXPECT_TRUE(looked.isInversionEnabled());
    EXPECT_EQ(looked.getSharpness(), -0.25F);
    EXPECT_FALSE(looked.isFlippedHorizontally());
    EXPECT_TRUE(looked.isFlippedVertically());
}
