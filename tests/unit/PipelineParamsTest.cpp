// The parameter document: its text, what it restores, what it refuses.
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/ImageProcessingPipeline.h>

#include "unit/support/Fill.h"
#include "unit/support/Gradings.h"

namespace {

using namespace test;
using Pipeline = zqx::img::ImageProcessingPipeline;
using zqx::img::Color;
using zqx::img::ColorGradient;
using zqx::img::ColorGrading;

const char* const DEFAULT_DOCUMENT = R"({
    "imageProcessing": {
        "version": 1,
        "inversionEnabled": false,
        "colorGrading": {
            "exposure": 0.0,
            "contrast": 0.5,
            "highlight": 0.0,
            "shadow": 0.0,
            "temperature": 6500.0,
            "hue": 0.0,
            "saturation": 1.0,
            "gradientMap": {
                "intensity": 0.0,
                "black": [
                    0.0,
                    0.0,
                    0.0,
                    1.0
                ],
                "white": [
                    1.0,
                    1.0,
                    1.0,
                    1.0
                ]
            }
        },
        "sharpness": 0.0,
        "flipX": false,
        "flipY": false
    }
})";

/// A pipeline with every parameter away from its default.
Pipeline colourful() {
    Pipeline pipeline(65535);
    pipeline.setInversionEnabled(1);
    pipeline.setSharpness(-0.3F);
    pipeline.setFlipHorizontal(1);
    pipeline.setFlipVertical(1);
    pipeline.setColorGrading(makeGrading(
        {0.1F, 0.6F, -0.7F, 0.9F, 4321.0F, -33.3F, 1.7F, 0.2F, {{0.1F, -0.2F, 0.3F, 0.4F}, {5.5F, 0.6F, 0.7F, 0.8F}}}));
    return pipeline;
}

std::string document(const std::string& members) {
    return R"({"imageProcessing": {"version": 1)" + (members.empty() ? "" : ", " + members) + "}}";
}

std::string gradingDocument(const std::string& members) {
    return document(R"("colorGrading": {)" + members + "}");
}

/// The pipeline after loading a document that is accepted.
Pipeline loaded(const std::string& text) {
    Pipeline pipeline = colourful();
    EXPECT_TRUE(pipeline.loadParams(text)) << text;
    return pipeline;
}

float measureSharpness(Pipeline pipeline) {
    float sharpness = 99.0F;
    pipeline.getSharpness(&sharpness);
    return sharpness;
}

bool isInverting(Pipeline pipeline) {
    int enabled = 99;
    pipeline.getInversionEnabled(&enabled);
    return enabled != 0;
}

bool flipsX(Pipeline pipeline) {
    int flips = 99;
    pipeline.getFlipHorizontal(&flips);
    return flips != 0;
}

bool flipsY(Pipeline pipeline) {
    int flips = 99;
    pipeline.getFlipVertical(&flips);
    return flips != 0;
}

void expectRejected(const std::string& text) {
    Pipeline pipeline = colourful();
    EXPECT_FALSE(pipeline.loadParams(text)) << text.substr(0, 200);
    EXPECT_EQ(colourful().saveParams(), pipeline.saveParams()) << "a refused document changed the parameters";
}

std::string repeated(const std::string& text, std::size_t count) {
    std::string result;
    result.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i) {
        result += text;
    }
    return result;
}

TEST(PipelineParamsTest, DefaultsAreWrittenExactlyLikeThis) {
    EXPECT_EQ(DEFAULT_DOCUMENT, Pipeline(0).saveParams());
}

TEST(PipelineParamsTest, FloatsAreWrittenWithTheirExactValue) {
    Pipeline pipeline(0);
    ColorGrading grading;
    grading.setExposure(0.1F);
    grading.setTemperature(2500.0F);
    grading.setShadow(-1e-7F);
    pipeline.setColorGrading(grading);
    pipeline.setSharpness(-0.3F);
    const std::string text = pipeline.saveParams();
    EXPECT_NE(std::string::npos, text.find("\"exposure\": 0.10000000149011612,")) << text;
    EXPECT_NE(std::string::npos, text.find("\"temperature\": 2500.0,")) << text;
    EXPECT_NE(std::string::npos, text.find("\"shadow\": -1.0000000116860974e-7,")) << text;
    // Grisu's digits: exact, but not always the shortest or nearest ones.
    EXPECT_NE(std::string::npos, text.find("\"sharpness\": -0.30000001192092898,")) << text;
}

TEST(PipelineParamsTest, SwitchesAreWrittenAsTrue) {
    const std::string text = colourful().saveParams();
    EXPECT_NE(std::string::npos, text.find("\"inversionEnabled\": true,"));
    EXPECT_NE(std::string::npos, text.find("\"flipX\": true,"));
    EXPECT_NE(std::string::npos, text.find("\"flipY\": true\n"));
}

TEST(PipelineParamsTest, StagesAndChannelsAreNotPartOfTheDocument) {
    Pipeline pipeline(3);
    pipeline.setInversionChannels(static_cast<zqx::img::Channel>(8));
    EXPECT_EQ(DEFAULT_DOCUMENT, pipeline.saveParams());
    EXPECT_TRUE(pipeline.loadParams(DEFAULT_DOCUMENT));
    int stages = 0;
    pipeline.getActiveStages(&stages);
    EXPECT_EQ(3, stages);
    EXPECT_EQ(8U, static_cast<unsigned>(pipeline.getInversionChannels()));
}

TEST(PipelineParamsTest, SavedParametersAreRestoredExactly) {
    Pipeline restored(65535);
    EXPECT_TRUE(restored.loadParams(colourful().saveParams()));
    EXPECT_EQ(0, restored.getColorGrading().compare(colourful().getColorGrading()));
    EXPECT_EQ(-0.3F, measureSharpness(restored));
    EXPECT_TRUE(isInverting(restored));
    EXPECT_TRUE(flipsX(restored));
    EXPECT_TRUE(flipsY(restored));
    EXPECT_EQ(colourful().saveParams(), restored.saveParams());
}

TEST(PipelineParamsTest, RandomParametersAreRestoredExactly) {
    Random random(60);
    for (int round = 0; round < 300; ++round) {
        Pipeline pipeline(0);
        pipeline.setColorGrading(makeGrading({random.between(-5, 5),
                                              random.unit(),
                                              random.between(-1, 8),
                                              random.between(-8, 1),
                                              random.between(2500, 10500),
                                              random.between(-180, 180),
                                              random.between(0, 2),
                                              random.unit(),
                                              {{random.unit(), random.between(-9, 9), random.unit() * 1e-30F, 1.0F},
                                               {random.unit(), random.between(-1e30F, 1e30F), random.unit(), 0.5F}}}));
        pipeline.setSharpness(random.between(-1, 1));
        pipeline.setFlipVertical(round % 2);
        Pipeline restored = colourful();
        ASSERT_TRUE(restored.loadParams(pipeline.saveParams()));
        EXPECT_EQ(0, restored.getColorGrading().compare(pipeline.getColorGrading())) << pipeline.saveParams();
        EXPECT_EQ(measureSharpness(pipeline), measureSharpness(restored));
        EXPECT_EQ(flipsY(pipeline), flipsY(restored));
        EXPECT_FALSE(flipsX(restored));
    }
}

TEST(PipelineParamsTest, OnlyTheEndsOfTheGradientAreWritten) {
    Pipeline pipeline(0);
    ColorGrading grading;
    grading.setGradientMap(ColorGradient({Color{1, 0, 0, 1}, Color{0, 1, 0, 1}, Color{0, 0, 1, 0.5F}}));
    pipeline.setColorGrading(grading);
    const Pipeline restored = loaded(pipeline.saveParams());
    EXPECT_EQ(
        0, restored.getColorGrading().getGradientMap().compare(ColorGradient(Color{1, 0, 0, 1}, Color{0, 0, 1, 0.5F})));
}

TEST(PipelineParamsTest, NotANumberLeavesNoValueAndDoesNotParse) {
    Pipeline pipeline = colourful();
    pipeline.setSharpness(std::numeric_limits<float>::quiet_NaN());
    const std::string text = pipeline.saveParams();
    EXPECT_NE(std::string::npos, text.find("\"sharpness\""));
    expectRejected(text);
}

TEST(PipelineParamsTest, InfiniteStopDoesNotParse) {
    Pipeline pipeline(0);
    ColorGrading grading;
    grading.setGradientMap(ColorGradient(Color{std::numeric_limits<float>::infinity(), 0, 0, 1}, Color{1, 1, 1, 1}));
    pipeline.setColorGrading(grading);
    expectRejected(pipeline.saveParams());
}

TEST(PipelineParamsTest, VersionAloneResetsEverything) {
    EXPECT_TRUE(loaded(document("")).hasDefaultParams());
}

TEST(PipelineParamsTest, MissingMembersBecomeDefaultsNotPreviousValues) {
    const Pipeline pipeline = loaded(document(R"("flipX": true)"));
    EXPECT_TRUE(flipsX(pipeline));
    EXPECT_FALSE(flipsY(pipeline));
    EXPECT_FALSE(isInverting(pipeline));
    EXPECT_EQ(0.0F, measureSharpness(pipeline));
    EXPECT_EQ(0, pipeline.getColorGrading().compare(ColorGrading()));
}

TEST(PipelineParamsTest, MissingGradingMembersBecomeDefaults) {
    const Pipeline pipeline = loaded(gradingDocument(R"("hue": 12.5)"));
    ColorGrading expected;
    expected.setHue(12.5F);
    EXPECT_EQ(0, pipeline.getColorGrading().compare(expected));
}

TEST(PipelineParamsTest, IntegersAreNumbersToo) {
    const Pipeline pipeline = loaded(document(R"("sharpness": -1, "colorGrading": {"exposure": 2, "temperature": 7000,
                    "gradientMap": {"intensity": 1, "black": [1, 0, 0, 1], "white": [0, 2, 0, 1]}})"));
    EXPECT_EQ(-1.0F, measureSharpness(pipeline));
    EXPECT_EQ(2.0F, pipeline.getColorGrading().getExposure());
    EXPECT_EQ(7000.0F, pipeline.getColorGrading().getTemperature());
    EXPECT_EQ(1.0F, pipeline.getColorGrading().getGradientMapIntensity());
    EXPECT_EQ(0,
              pipeline.getColorGrading().getGradientMap().compare(ColorGradient(Color{1, 0, 0, 1}, Color{0, 2, 0, 1})));
}

TEST(PipelineParamsTest, SharpnessOutsideItsRangeIsLimited) {
    EXPECT_EQ(1.0F, measureSharpness(loaded(document(R"("sharpness": 4)"))));
    EXPECT_EQ(-1.0F, measureSharpness(loaded(document(R"("sharpness": -1.5)"))));
}

TEST(PipelineParamsTest, ValuesBelowTheirRangeAreLimited) {
    const Pipeline pipeline = loaded(gradingDocument(R"("exposure": -1e300, "contrast": -1, "highlight": -9,
        "shadow": -9, "temperature": 0, "hue": -999, "saturation": -0.1, "gradientMap": {"intensity": -2})"));
    const ColorGrading& grading = pipeline.getColorGrading();
    EXPECT_EQ(-5.0F, grading.getExposure());
    EXPECT_EQ(0.0F, grading.getContrast());
    EXPECT_EQ(-1.0F, grading.getHighlight());
    EXPECT_EQ(-8.0F, grading.getShadow());
    EXPECT_EQ(2500.0F, grading.getTemperature());
    EXPECT_EQ(-180.0F, grading.getHue());
    EXPECT_EQ(0.0F, grading.getSaturation());
    EXPECT_EQ(0.0F, grading.getGradientMapIntensity());
}

TEST(PipelineParamsTest, ValuesAboveTheirRangeAreLimited) {
    const Pipeline pipeline = loaded(gradingDocument(R"("exposure": 1e300, "contrast": 2, "highlight": 9,
        "shadow": 9, "temperature": 1e6, "hue": 999, "saturation": 2.1, "gradientMap": {"intensity": 2})"));
    const ColorGrading& grading = pipeline.getColorGrading();
    EXPECT_EQ(5.0F, grading.getExposure());
    EXPECT_EQ(1.0F, grading.getContrast());
    EXPECT_EQ(8.0F, grading.getHighlight());
    EXPECT_EQ(1.0F, grading.getShadow());
    EXPECT_EQ(10500.0F, grading.getTemperature());
    EXPECT_EQ(180.0F, grading.getHue());
    EXPECT_EQ(2.0F, grading.getSaturation());
    EXPECT_EQ(1.0F, grading.getGradientMapIntensity());
}

TEST(PipelineParamsTest, MembersOfTheWrongTypeAreSkipped) {
    EXPECT_TRUE(loaded(document(R"("inversionEnabled": 1)")).hasDefaultParams());
    EXPECT_TRUE(loaded(document(R"("inversionEnabled": "true", "flipX": 1, "flipY": null)")).hasDefaultParams());
    EXPECT_TRUE(loaded(document(R"("sharpness": "0.5")")).hasDefaultParams());
    EXPECT_TRUE(loaded(document(R"("sharpness": true)")).hasDefaultParams());
    EXPECT_TRUE(loaded(document(R"("sharpness": [0.5])")).hasDefaultParams());
    EXPECT_TRUE(loaded(document(R"("colorGrading": 5)")).hasDefaultParams());
    EXPECT_TRUE(loaded(document(R"("colorGrading": [{"exposure": 1}])")).hasDefaultParams());
    EXPECT_TRUE(loaded(gradingDocument(R"("exposure": "1", "contrast": null, "hue": {}, "gradientMap": 1)"))
                    .hasDefaultParams());
    EXPECT_TRUE(loaded(gradingDocument(R"("gradientMap": {"intensity": false})")).hasDefaultParams());
}

TEST(PipelineParamsTest, AWrongMemberDoesNotStopTheOthers) {
    const Pipeline pipeline =
        loaded(document(R"("inversionEnabled": 7, "colorGrading": {"exposure": "x", "hue": 3}, "flipY": true)"));
    EXPECT_FALSE(isInverting(pipeline));
    EXPECT_EQ(3.0F, pipeline.getColorGrading().getHue());
    EXPECT_TRUE(flipsY(pipeline));
}

TEST(PipelineParamsTest, GradientNeedsBothEnds) {
    const char* const documents[] = {
        R"("gradientMap": {"black": [1, 0, 0, 1]})",
        R"("gradientMap": {"white": [1, 0, 0, 1]})",
        R"("gradientMap": {"black": [1, 0, 0], "white": [1, 0, 0, 1]})",
        R"("gradientMap": {"black": [1, 0, 0, 1], "white": [1, 0, 0]})",
        R"("gradientMap": {"black": [1, 0, 0, "1"], "white": [1, 0, 0, 1]})",
        R"("gradientMap": {"black": [1, 0, 0, 1], "white": [1, null, 0, 1]})",
        R"("gradientMap": {"black": {"r": 1}, "white": [1, 0, 0, 1]})",
        R"("gradientMap": {"black": [], "white": []})",
    };
    for (const char* const members : documents) {
        const Pipeline pipeline = loaded(gradingDocument(members));
        EXPECT_EQ(0, pipeline.getColorGrading().getGradientMap().compare(ColorGradient())) << members;
    }
}

TEST(PipelineParamsTest, IntensityIsReadWithoutStops) {
    const Pipeline pipeline = loaded(gradingDocument(R"("gradientMap": {"intensity": 0.25, "black": 0})"));
    EXPECT_EQ(0.25F, pipeline.getColorGrading().getGradientMapIntensity());
    EXPECT_EQ(0, pipeline.getColorGrading().getGradientMap().compare(ColorGradient()));
}

TEST(PipelineParamsTest, KeysAreCaseSensitive) {
    EXPECT_TRUE(loaded(document(R"("FlipX": true, "flipx": true, "Sharpness": 1)")).hasDefaultParams());
    expectRejected(R"({"ImageProcessing": {"version": 1}})");
    expectRejected(R"({"imageProcessing": {"Version": 1}})");
}

TEST(PipelineParamsTest, UnknownMembersAreIgnored) {
    const Pipeline pipeline =
        loaded(R"({"other": [1, {"a": null}], "imageProcessing": {"version": 1, "future": {"x": 1}, "flipX": true}})");
    EXPECT_TRUE(flipsX(pipeline));
}

TEST(PipelineParamsTest, OrderOfMembersDoesNotMatter) {
    const Pipeline pipeline = loaded(R"({"imageProcessing": {"flipY": true, "sharpness": 0.5, "version": 1}})");
    EXPECT_TRUE(flipsY(pipeline));
    EXPECT_EQ(0.5F, measureSharpness(pipeline));
}

TEST(PipelineParamsTest, OtherVersionsAreRejected) {
    for (const char* const version :
         {"2", "0", "-1", "\"1\"", "1.5", "true", "null", "[1]", "{}", "4294967297", "99999999999999999999"}) {
        expectRejected(std::string(R"({"imageProcessing": {"flipX": false, "version": )") + version + "}}");
    }
}

TEST(PipelineParamsTest, MissingVersionIsRejected) {
    expectRejected(R"({"imageProcessing": {}})");
    expectRejected(R"({"version": 1, "imageProcessing": {"flipX": true}})");
}

TEST(PipelineParamsTest, MissingOrStrangeRootIsRejected) {
    for (const char* const text : {"{}", "[]", "1", "null", "true", "\"imageProcessing\"", R"({"imageProcessing": 1})",
                                   R"({"imageProcessing": null})", R"({"imageProcessing": [{"version": 1}]})",
                                   R"([{"imageProcessing": {"version": 1}}])"}) {
        expectRejected(text);
    }
}

TEST(PipelineParamsTest, TextThatIsNotJsonIsRejected) {
    const std::string good = document("");
    for (const std::string& text :
         {std::string(), std::string(" \n"), std::string("{"), std::string("hello"), good + "x", good + "{}",
          good.substr(0, good.size() - 1), document("\"flipX\": True"), document("flipX: true"),
          document("'flipX': true"), document("\"flipX\": true,"), document("\"sharpness\": .5"),
          document("\"sharpness\": NaN"), document("\"sharpness\": Infinity"), document("\"sharpness\": 1e999"),
          document("\"sharpness\": 01"), document("\"a\": \"\n\""), document("/* no comments */ \"a\": 1")}) {
        expectRejected(text);
    }
}

TEST(PipelineParamsTest, EveryTruncationIsRejected) {
    const std::string text = colourful().saveParams();
    for (std::size_t length = 0; length < text.size(); ++length) {
        Pipeline pipeline(0);
        EXPECT_FALSE(pipeline.loadParams(text.substr(0, length))) << length;
        EXPECT_TRUE(pipeline.hasDefaultParams()) << length;
    }
}

TEST(PipelineParamsTest, WhiteSpaceAroundTheDocumentIsAccepted) {
    EXPECT_TRUE(loaded(" \t\r\n" + document("") + "\n \n").hasDefaultParams());
}

TEST(PipelineParamsTest, TextEndsAtItsTerminatingZero) {
    const std::string text = document("\"flipX\": true") + std::string(1, '\0') + "garbage";
    EXPECT_TRUE(flipsX(loaded(text)));
}

TEST(PipelineParamsTest, MillionsOfBracketsAreRejectedWithoutExhaustingTheStack) {
    constexpr std::size_t DEPTH = 1000000;
    expectRejected(repeated("[", DEPTH));
    expectRejected(repeated("{\"a\":", DEPTH));
    expectRejected(R"({"imageProcessing": {"version": 1, "x": )" + repeated("[", DEPTH));
}

TEST(PipelineParamsTest, DeepButCompleteNestingDoesNotExhaustTheStack) {
    constexpr std::size_t DEPTH = 100000;
    Pipeline pipeline = colourful();
    // Whether a document this deep is taken is open; both answers leave a sound pipeline.
    const bool accepted = pipeline.loadParams(document("\"x\": " + repeated("[", DEPTH) + repeated("]", DEPTH)));
    EXPECT_EQ(accepted ? Pipeline(0).saveParams() : colourful().saveParams(), pipeline.saveParams());
    expectRejected(repeated("[", DEPTH) + repeated("]", DEPTH));
}

} // namespace
