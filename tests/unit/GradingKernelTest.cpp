// The grading of pixels: each step by itself, then all pairs of formats under many settings.
#include <cmath>
#include <initializer_list>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/ColorGrading.h>

#include "oracle/Grade.h"
#include "unit/support/Compare.h"
#include "unit/support/Fill.h"
#include "unit/support/GradeRange.h"
#include "unit/support/Gradings.h"
#include "unit/support/GuardedImage.h"
#include "unit/support/Literal.h"

namespace {

using namespace test;
using Bytes = std::vector<int>;
using Floats = std::vector<float>;
using zqx::img::ColorGrading;

constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

/// Grades one linear colour into floats.
Floats graded(const oracle::Settings& settings, std::initializer_list<float> rgb) {
    FloatPicture source(Image::RGB32F, 1, rgb);
    FloatPicture target(Image::RGB32F, 1, Floats(rgb.size()));
    makeGrading(settings).apply(source.image(), target.image());
    return getFloats(target.image());
}

Floats gradedGrey(const oracle::Settings& settings, std::initializer_list<float> greys) {
    FloatPicture source(Image::GRAY32F, 1, greys);
    FloatPicture target(Image::GRAY32F, 1, Floats(greys.size()));
    makeGrading(settings).apply(source.image(), target.image());
    return getFloats(target.image());
}

template <typename Change>
oracle::Settings settingsWith(Change change) {
    oracle::Settings settings;
    change(settings);
    return settings;
}

oracle::Settings contrast(float value) {
    return settingsWith([=](oracle::Settings& s) { s.contrast = value; });
}

oracle::Settings highlight(float value) {
    return settingsWith([=](oracle::Settings& s) { s.highlight = value; });
}

oracle::Settings shadow(float value) {
    return settingsWith([=](oracle::Settings& s) { s.shadow = value; });
}

oracle::Settings temperature(float value) {
    return settingsWith([=](oracle::Settings& s) { s.temperature = value; });
}

oracle::Settings hue(float value) {
    return settingsWith([=](oracle::Settings& s) { s.hue = value; });
}

oracle::Settings saturation(float value) {
    return settingsWith([=](oracle::Settings& s) { s.saturation = value; });
}

/// Grades a picture into a guarded one and hands both to the check.
template <typename Check>
void gradeGuarded(const GuardedImage& source, Image::Format to, Gaps gaps, const ColorGrading& grading, Check check) {
    GuardedImage target(source.image().getWidth(), source.image().getHeight(), to, gaps);
    grading.apply(source.image(), target.image());
    EXPECT_TRUE(target.guardsIntact());
    check(target);
}

void expectExactGrading(const GuardedImage& source, Image::Format to, Gaps gaps, const oracle::Prepared& prepared,
                        const ColorGrading& grading) {
    oracle::Picture expected(source.image().getWidth(), source.image().getHeight(), to);
    oracle::grade(prepared, source.surface(), expected.surface);
    gradeGuarded(source, to, gaps, grading,
                 [&](const GuardedImage& target) { EXPECT_TRUE(samePixels(target.surface(), expected.surface)); });
}

TEST(GradingKernelTest, NeutralSettingsKeepFloats) {
    const Floats colours = {0.5F, 0.25F, 0.125F, 0.7F, 4.0F, 4.0F, 4.0F, 1.0F, -2.0F, -2.0F, -2.0F, -1.0F};
    FloatPicture source(Image::RGBA32F, 1, colours);
    FloatPicture target(Image::RGBA32F, 1, Floats(colours.size()));
    ColorGrading().apply(source.image(), target.image());
    for (std::size_t i = 0; i < colours.size(); ++i) {
        EXPECT_FLOAT_EQ(colours[i], target[i]) << "element " << i;
    }
}

TEST(GradingKernelTest, NeutralSettingsMayLowerEncodedBytesByOne) {
    GuardedImage source(256, 1, Image::SRGB8);
    fillSweep(source.surface());
    GuardedImage target(256, 1, Image::SRGB8);
    ColorGrading().apply(source.image(), target.image());
    int moved = 0;
    for (std::size_t x = 0; x < 256; ++x) {
        for (int e = 0; e < 3; ++e) {
            const int step = source.surface().at(x, 0)[e] - target.surface().at(x, 0)[e];
            EXPECT_TRUE(step == 0 || step == 1) << "code " << int{source.surface().at(x, 0)[e]};
            moved += step;
        }
    }
    EXPECT_GT(moved, 0);
}

TEST(GradingKernelTest, ExposureDoublesPerStop) {
    const auto exposure = [](float stops) { return settingsWith([=](oracle::Settings& s) { s.exposure = stops; }); };
    EXPECT_FLOAT_EQ(0.25F, gradedGrey(exposure(1.0F), {0.125F})[0]);
    EXPECT_FLOAT_EQ(4.0F, gradedGrey(exposure(5.0F), {0.125F})[0]);
    EXPECT_FLOAT_EQ(-1.0F / 32.0F, gradedGrey(exposure(-5.0F), {-1.0F})[0]);
}

TEST(GradingKernelTest, ContrastTurnsAroundHalf) {
    const Floats steep = gradedGrey(contrast(0.7F), {0.25F, 0.5F, 1.0F});
    const float exponent = std::tan(0.7F * 1.5707964F);
    EXPECT_NEAR(0.5F * std::pow(0.5F, exponent), steep[0], 1e-5);
    EXPECT_NEAR(0.5F, steep[1], 1e-5);
    EXPECT_NEAR(0.5F * std::pow(2.0F, exponent), steep[2], 1e-5);
}

TEST(GradingKernelTest, ContrastZeroIsFlat) {
    for (const float value : gradedGrey(contrast(0.0F), {0.001F, 0.5F, 3.0F})) {
        EXPECT_NEAR(0.5F, value, 1e-6);
    }
}

TEST(GradingKernelTest, ContrastOneIsAStepWithFiniteEnds) {
    const Floats step = gradedGrey(contrast(1.0F), {0.0F, 0.49F, 0.51F, 1e30F});
    EXPECT_EQ(0.0F, step[0]);
    EXPECT_EQ(0.0F, step[1]);
    EXPECT_FLOAT_EQ(1000.0F, step[2]);
    EXPECT_FLOAT_EQ(1000.0F, step[3]);
}

TEST(GradingKernelTest, ContrastStaysWithinZeroAndThousand) {
    for (const float value : {0.1F, 0.3F, 0.8F, 0.99F}) {
        for (const float result : gradedGrey(contrast(value), {0.0F, 1e-9F, 0.01F, 0.7F, 5.0F, 1e5F, 1e38F})) {
            EXPECT_GE(result, 0.0F);
            EXPECT_LE(result, 1000.001F);
        }
    }
}

TEST(GradingKernelTest, HighlightsAfterContrastMayExceedThousand) {
    oracle::Settings settings = contrast(0.9F);
    settings.highlight = 8.0F;
    EXPECT_NEAR(1000.0F + 999.34F * 8.0F, gradedGrey(settings, {1e6F})[0], 1.0F);
}

TEST(GradingKernelTest, ContrastOfNegativeValuesIsNotANumber) {
    EXPECT_TRUE(std::isnan(gradedGrey(contrast(0.6F), {-0.5F})[0]));
}

TEST(GradingKernelTest, LowestContrastOfInfinityIsNotANumber) {
    const float infinity = std::numeric_limits<float>::infinity();
    const Floats flat = gradedGrey(contrast(0.0F), {infinity, std::numeric_limits<float>::max(), 0.0F});
    EXPECT_TRUE(std::isnan(flat[0])) << "an infinite logarithm times zero";
    EXPECT_NEAR(0.5F, flat[1], 1e-6);
    EXPECT_NEAR(0.5F, flat[2], 1e-6);
}

TEST(GradingKernelTest, HighlightsLeaveTheirThresholdAlone) {
    EXPECT_FLOAT_EQ(0.66F, gradedGrey(highlight(8.0F), {0.66F})[0]);
    EXPECT_FLOAT_EQ(0.5F, gradedGrey(highlight(8.0F), {0.5F})[0]);
    EXPECT_FLOAT_EQ(1.0F + 0.34F * 8.0F, gradedGrey(highlight(8.0F), {1.0F})[0]);
}

TEST(GradingKernelTest, LowestHighlightsFlattenEverythingBright) {
    for (const float value : gradedGrey(highlight(-1.0F), {0.67F, 1.0F, 30.0F})) {
        EXPECT_NEAR(0.66F, value, 3e-6);
    }
}

TEST(GradingKernelTest, ShadowsLeaveTheirThresholdAlone) {
    EXPECT_FLOAT_EQ(0.33F, gradedGrey(shadow(-8.0F), {0.33F})[0]);
    EXPECT_FLOAT_EQ(0.5F, gradedGrey(shadow(-8.0F), {0.5F})[0]);
}

TEST(GradingKernelTest, HighestShadowsLiftEverythingDark) {
    for (const float value : gradedGrey(shadow(1.0F), {0.32F, 0.1F, 0.0F, -2.0F})) {
        EXPECT_NEAR(0.33F, value, 1e-6);
    }
}

TEST(GradingKernelTest, LowestShadowsDarkenToZeroAndNotBelow) {
    const Floats dark = gradedGrey(shadow(-8.0F), {0.32F, 0.2F, 0.0F, -3.0F});
    EXPECT_NEAR(0.32F - 0.01F * 8.0F, dark[0], 1e-6);
    EXPECT_EQ(0.0F, dark[1]);
    EXPECT_EQ(0.0F, dark[2]);
    EXPECT_EQ(0.0F, dark[3]);
}

TEST(GradingKernelTest, ShadowsAtZeroKeepNegativeFloats) {
    EXPECT_FLOAT_EQ(-0.25F, gradedGrey(shadow(0.0F), {-0.25F})[0]);
    EXPECT_FLOAT_EQ(-0.25F, gradedGrey(shadow(-0.0F), {-0.25F})[0]);
    EXPECT_GE(gradedGrey(shadow(1e-6F), {-0.25F})[0], 0.0F) << "any other setting limits";
}

TEST(GradingKernelTest, TemperatureMovesWhiteAsAdaptationPredicts) {
    const struct {
        float kelvin;
        float r, g, b;
    } whites[] = {{2500, 0.073F, 1.180F, 4.067F}, {3000, 0.284F, 1.129F, 3.138F}, {10500, 1.196F, 0.985F, 0.682F}};
    for (const auto& white : whites) {
        const Floats result = graded(temperature(white.kelvin), {1.0F, 1.0F, 1.0F});
        EXPECT_NEAR(white.r, result[0], 6e-4) << white.kelvin;
        EXPECT_NEAR(white.g, result[1], 6e-4) << white.kelvin;
        EXPECT_NEAR(white.b, result[2], 6e-4) << white.kelvin;
    }
}

TEST(GradingKernelTest, TemperatureOfDaylightChangesNothing) {
    EXPECT_EQ(graded({}, {0.9F, 0.4F, 0.2F}), graded(temperature(6500.0F), {0.9F, 0.4F, 0.2F}));
}

TEST(GradingKernelTest, TemperatureNextToDaylightIsNearlyNeutral) {
    const Floats result = graded(temperature(6499.99F), {0.9F, 0.4F, 0.2F});
    EXPECT_NEAR(0.9F, result[0], 1e-3);
    EXPECT_NEAR(0.4F, result[1], 1e-3);
    EXPECT_NEAR(0.2F, result[2], 1e-3);
    EXPECT_NE(graded({}, {0.9F, 0.4F, 0.2F}), result) << "the locus misses the white point by a little";
}

TEST(GradingKernelTest, SevenThousandKelvinUsesTheWarmFormula) {
    // The two daylight formulas do not meet exactly at 7000 K: a step follows it, but none lies before it.
    const Floats at = graded(temperature(7000.0F), {1.0F, 1.0F, 1.0F});
    const Floats below = graded(temperature(std::nextafter(7000.0F, 0.0F)), {1.0F, 1.0F, 1.0F});
    const Floats above = graded(temperature(std::nextafter(7000.0F, 1e9F)), {1.0F, 1.0F, 1.0F});
    EXPECT_NEAR(below[2], at[2], 1e-6);
    EXPECT_GT(std::fabs(above[2] - at[2]), 3e-6F);
}

TEST(GradingKernelTest, HueOfFullTurnHalvesMeet) {
    const Floats forward = graded(hue(180.0F), {0.8F, 0.3F, 0.2F});
    const Floats backward = graded(hue(-180.0F), {0.8F, 0.3F, 0.2F});
    for (int i = 0; i < 3; ++i) {
        EXPECT_NEAR(forward[i], backward[i], 1e-5);
    }
    EXPECT_LT(forward[0], forward[2]) << "the opposite of red is bluish";
}

TEST(GradingKernelTest, HueKeepsGreyAndLuma) {
    const Floats grey = graded(hue(90.0F), {0.5F, 0.5F, 0.5F});
    for (const float value : grey) {
        EXPECT_NEAR(0.5F, value, 1e-3); // the matrices' white is not quite the reference white
    }
    const Floats turned = graded(hue(40.0F), {0.6F, 0.3F, 0.2F});
    EXPECT_NEAR(oracle::luma({0.6F, 0.3F, 0.2F, 1}), oracle::luma({turned[0], turned[1], turned[2], 1}), 1e-4);
}

TEST(GradingKernelTest, HueOfBlackIsNotANumberInFloats) {
    for (const float value : graded(hue(10.0F), {0.0F, 0.0F, 0.0F})) {
        EXPECT_TRUE(std::isnan(value));
    }
}

TEST(GradingKernelTest, HueOfBlackIsZeroInBytes) {
    FloatPicture source(Image::RGBA32F, 1, {0.0F, 0.0F, 0.0F, 1.0F});
    for (const Image::Format format : {Image::RGBA8, Image::SRGBA8, Image::SBGRA8}) {
        BytePicture target(format, 1, {9, 9, 9, 9});
        makeGrading(hue(10.0F)).apply(source.image(), target.image());
        EXPECT_EQ((Bytes{0, 0, 0, 255}), getBytes(target.image())) << getName(format);
    }
}

TEST(GradingKernelTest, SaturationZeroGivesLuma) {
    for (const float value : graded(saturation(0.0F), {1.0F, 0.0F, 0.0F})) {
        EXPECT_FLOAT_EQ(0.2126F, value);
    }
}

TEST(GradingKernelTest, SaturationTwoDoublesTheDistanceFromLuma) {
    const Floats result = graded(saturation(2.0F), {1.0F, 0.0F, 0.0F});
    EXPECT_FLOAT_EQ(2.0F - 0.2126F, result[0]);
    EXPECT_FLOAT_EQ(-0.2126F, result[1]);
}

TEST(GradingKernelTest, GradientReplacesColourByTheEntryOfItsLuma) {
    oracle::Settings settings;
    settings.intensity = 1.0F;
    settings.stops = sunsetStops();
    const std::vector<oracle::Values> table = oracle::gradientTable(settings.stops);
    const auto expectEntry = [&](std::initializer_list<float> rgb, int index) {
        const Floats result = graded(settings, rgb);
        EXPECT_NEAR(table[index].r, result[0], 1e-6) << index;
        EXPECT_NEAR(table[index].g, result[1], 1e-6) << index;
        EXPECT_NEAR(table[index].b, result[2], 1e-6) << index;
    };
    expectEntry({0.0F, 0.0F, 0.0F}, 0);
    expectEntry({-5.0F, -5.0F, -5.0F}, 0);
    expectEntry({9.0F, 9.0F, 9.0F}, 255);
    expectEntry({0.502F, 0.502F, 0.502F}, 128); // 128.01
    expectEntry({0.0F, 0.0F, 1.0F}, 18);        // 0.0722 * 255 = 18.4
}

TEST(GradingKernelTest, GradientBlendsByItsIntensity) {
    oracle::Settings settings;
    settings.intensity = 0.25F;
    settings.stops = {{1, 0, 0, 1}, {1, 0, 0, 1}};
    const Floats result = graded(settings, {0.4F, 0.4F, 0.4F});
    EXPECT_NEAR(0.4F + 0.6F * 0.25F, result[0], 1e-6);
    EXPECT_NEAR(0.3F, result[1], 1e-6);
}

TEST(GradingKernelTest, AlphaPassesUngraded) {
    FloatPicture source(Image::RGBA32F, 1, {0.5F, 0.5F, 0.5F, 7.25F});
    FloatPicture target(Image::RGBA32F, 1, Floats(4));
    oracle::Settings settings = contrast(0.9F);
    settings.exposure = 3.0F;
    makeGrading(settings).apply(source.image(), target.image());
    EXPECT_EQ(7.25F, target[3]);
}

TEST(GradingKernelTest, MissingAlphaBecomesOpaque) {
    BytePicture source(Image::RGB8, 1, {1, 2, 3});
    BytePicture bytes(Image::SBGRA8, 1, {0, 0, 0, 0});
    FloatPicture floats(Image::RGBA32F, 1, Floats(4));
    ColorGrading().apply(source.image(), bytes.image());
    ColorGrading().apply(source.image(), floats.image());
    EXPECT_EQ(255, getBytes(bytes.image())[3]);
    EXPECT_EQ(1.0F, floats[3]);
}

TEST(GradingKernelTest, GreyDestinationStoresTheRedChannel) {
    BytePicture source(Image::SBGRA8, 1, {0, 0, 255, 255});
    BytePicture target(Image::GRAY8, 1, {0});
    ColorGrading().apply(source.image(), target.image());
    EXPECT_EQ((Bytes{255}), getBytes(target.image())) << "red, from the third byte";
    BytePicture blue(Image::SBGRA8, 1, {255, 255, 0, 255});
    ColorGrading().apply(blue.image(), target.image());
    EXPECT_EQ((Bytes{0}), getBytes(target.image())) << "no luma";
}

TEST(GradingKernelTest, NotANumberSettingsMakeNotANumberPixels) {
    for (const NamedSettings& set : nanSettings()) {
        // One value in the shadows and one in the highlights, so that each setting acts on one at least.
        for (const float value : graded(set.settings, {0.1F, 0.9F, 0.5F})) {
            EXPECT_TRUE(std::isnan(value)) << set.name;
        }
    }
}

TEST(GradingKernelTest, ShadowLimitKeepsNotANumber) {
    EXPECT_TRUE(std::isnan(gradedGrey(shadow(NOT_A_NUMBER), {0.1F})[0]));
    EXPECT_TRUE(std::isnan(gradedGrey(shadow(1.0F), {NOT_A_NUMBER})[0]));
    EXPECT_TRUE(std::isnan(gradedGrey(shadow(1.0F), {-std::numeric_limits<float>::infinity()})[0]));
}

TEST(GradingKernelTest, AllPairsAreExactWithoutContrastAndHue) {
    std::vector<NamedSettings> sets = exactSettings();
    for (NamedSettings& set : nanSettings()) {
        sets.push_back(std::move(set));
    }
    for (const NamedSettings& set : sets) {
        SCOPED_TRACE(set.name);
        const ColorGrading grading = makeGrading(set.settings);
        const oracle::Prepared prepared = oracle::prepare(set.settings);
        forAllPairs([&](Image::Format from, Image::Format to) {
            SCOPED_TRACE(getName(from, to));
            GuardedImage sweep(256, 1, from);
            fillSweep(sweep.surface());
            expectExactGrading(sweep, to, {}, prepared, grading);
            GuardedImage random(61, 3, from, {0, 8});
            fillRandom(random.surface(), from * 16 + to);
            expectExactGrading(random, to, {0, 4}, prepared, grading);
        });
    }
}

TEST(GradingKernelTest, AllPairsInEveryWidthUpToForty) {
    const std::vector<NamedSettings> sets = exactSettings();
    const NamedSettings& everything = sets.back();
    const ColorGrading grading = makeGrading(everything.settings);
    const oracle::Prepared prepared = oracle::prepare(everything.settings);
    forAllPairs([&](Image::Format from, Image::Format to) {
        for (std::size_t width = 1; width <= 40; ++width) {
            SCOPED_TRACE(getName(from, to) + ", width " + std::to_string(width));
            GuardedImage source(width, 2, from, {0, width % 3 * 4});
            fillRandom(source.surface(), width);
            expectExactGrading(source, to, {0, width % 4 * 4}, prepared, grading);
        }
    });
}

TEST(GradingKernelTest, AllPairsBetweenFreePixelStrides) {
    const NamedSettings everything = exactSettings().back();
    const ColorGrading grading = makeGrading(everything.settings);
    const oracle::Prepared prepared = oracle::prepare(everything.settings);
    forAllPairs([&](Image::Format from, Image::Format to) {
        SCOPED_TRACE(getName(from, to));
        GuardedImage source(37, 3, from, {4, 8});
        fillRandom(source.surface(), 7);
        expectExactGrading(source, to, {8, 4}, prepared, grading);
    });
}

/// Calls visit(prepared, source, graded, expected) for a photograph in all pairs of formats.
template <typename Visit>
void gradePhotographs(const NamedSettings& set, Visit visit) {
    const ColorGrading grading = makeGrading(set.settings);
    const oracle::Prepared prepared = oracle::prepare(set.settings);
    forAllPairs([&](Image::Format from, Image::Format to) {
        SCOPED_TRACE(set.name + ", " + getName(from, to));
        GuardedImage source(43, 11, from, {0, 4});
        fillPhoto(source.surface(), from * 16 + to);
        oracle::Picture expected(43, 11, to);
        oracle::grade(prepared, source.surface(), expected.surface);
        gradeGuarded(source, to, {0, 8}, grading, [&](const GuardedImage& target) {
            visit(prepared, source.surface(), target.surface(), expected.surface);
        });
    });
}

TEST(GradingKernelTest, AllPairsAreNearOnAPhotographWithContrastOrHue) {
    for (const NamedSettings& set : curvedSettings()) {
        if (set.settings.intensity != 0.0F) {
            continue; // a gradient makes steps of small differences: see the next test
        }
        ByteTally tally;
        gradePhotographs(set, [&](const oracle::Prepared&, const oracle::Surface&, const oracle::Surface& graded,
                                  const oracle::Surface& expected) {
            EXPECT_TRUE(nearPixels(graded, expected, GRADE_TOLERANCE, tally));
        });
        EXPECT_TRUE(tally.withinBound()) << set.name;
    }
}

TEST(GradingKernelTest, AllPairsTakeAGradientEntryWithinReachOnAPhotographWithContrastOrHue) {
    int sets = 0;
    for (const NamedSettings& set : curvedSettings()) {
        if (set.settings.intensity == 0.0F) {
            continue;
        }
        ++sets;
        RangeTally tally;
        gradePhotographs(set, [&](const oracle::Prepared& prepared, const oracle::Surface& source,
                                  const oracle::Surface& graded, const oracle::Surface& expected) {
            EXPECT_TRUE(withinRanges(prepared, source, graded, tally));
            EXPECT_TRUE(sameAlpha(graded, expected));
        });
        EXPECT_EQ(0U, tally.open) << "every pixel of a photograph is judged";
    }
    EXPECT_GT(sets, 0);
}

TEST(GradingKernelTest, AllPairsStayInRangeOnAnyPixelWithContrastOrHue) {
    for (const NamedSettings& set : curvedSettings()) {
        SCOPED_TRACE(set.name);
        const ColorGrading grading = makeGrading(set.settings);
        const oracle::Prepared prepared = oracle::prepare(set.settings);
        RangeTally tally;
        forAllPairs([&](Image::Format from, Image::Format to) {
            SCOPED_TRACE(getName(from, to));
            GuardedImage source(29, 2, from);
            fillRandom(source.surface(), from * 16 + to);
            gradeGuarded(source, to, {}, grading, [&](const GuardedImage& target) {
                EXPECT_TRUE(withinRanges(prepared, source.surface(), target.surface(), tally));
            });
        });
        EXPECT_LT(tally.open * 50, tally.compared) << "too few pixels were judged";
    }
}

TEST(GradingKernelTest, GradesAnImageInPlace) {
    const NamedSettings everything = exactSettings().back();
    const ColorGrading grading = makeGrading(everything.settings);
    const oracle::Prepared prepared = oracle::prepare(everything.settings);
    for (const Image::Format format : ALL_FORMATS) {
        for (const std::size_t width : {1U, 7U, 16U, 33U, 259U}) {
            GuardedImage image(width, 3, format, {0, 4});
            fillRandom(image.surface(), width);
            oracle::Picture expected(width, 3, format);
            oracle::grade(prepared, image.surface(), expected.surface);
            grading.apply(image.image(), image.image());
            EXPECT_TRUE(samePixels(image.surface(), expected.surface)) << "width " << width;
            EXPECT_TRUE(image.guardsIntact());
        }
    }
}

TEST(GradingKernelTest, GradesASubImageAsGreyThroughItsOwnStrides) {
    BytePicture parent(Image::RGBA8, 1, {51, 1, 2, 3, 102, 4, 5, 6});
    Image sub = parent.image().getSubImage(0, 0, 2, 1);
    oracle::Settings settings;
    settings.exposure = 1.0F;
    makeGrading(settings).apply(sub, sub);
    EXPECT_EQ((Bytes{102, 1, 2, 3, 204, 4, 5, 6}), getBytes(parent.image()));
}

TEST(GradingKernelTest, ImagesWithoutPixelsAreLeftAlone) {
    forAllPairs([](Image::Format from, Image::Format to) {
        GuardedImage tall(0, 3, from, {0, 16});
        GuardedImage wide(3, 0, from);
        const auto nothing = [](const GuardedImage&) {};
        gradeGuarded(tall, to, {0, 16}, ColorGrading(), nothing);
        gradeGuarded(wide, to, {}, ColorGrading(), nothing);
    });
}

TEST(GradingKernelTest, UnknownFormatsAreLeftAlone) {
    for (const Image::Format unknown : UNKNOWN_FORMATS) {
        for (const Image::Format format : ALL_FORMATS) {
            GuardedImage known(4, 3, format);
            GuardedImage strange(4, 3, unknown, {4, 16});
            ColorGrading().apply(strange.image(), known.image());
            ColorGrading().apply(known.image(), strange.image());
            EXPECT_EQ(GuardedImage(4, 3, format).memory(), known.memory()) << getName(format);
            EXPECT_TRUE(strange.guardsIntact());
        }
    }
}

} // namespace
