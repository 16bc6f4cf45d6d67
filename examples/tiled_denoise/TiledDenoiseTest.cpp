// The example as a process on the sample render, and its parts: tiles must not show.
#include <algorithm>
#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <tov/TovRef.h>
#include <zqx/img/DenoisingFilter.h>
#include <zqx/img/FreeImage.h>

#include "Comparison.h"
#include "TiledDenoiser.h"
#include "ToneCurve.h"
#include "render/RenderPicture.h"
#include "support/DirectoryTest.h"
#include "support/Process.h"

namespace tiled_denoise {
namespace {

using zqx::img::DenoisingFilter;
using zqx::img::FreeImage;
using zqx::img::Image;
using zqx::img::test::blackLike;
using zqx::img::test::DirectoryTest;
using zqx::img::test::Outcome;
using zqx::img::test::readRender;
using zqx::img::test::RenderPicture;
using zqx::img::test::runCommand;
using zqx::img::test::signalToNoise;
using zqx::img::test::toneMapped;
using zqx::img::test::writeFile;

std::string sample(const std::string& name) {
    return std::string(ZQX_RENDER) + '/' + name;
}

RenderPicture readOutput(const std::string& path) {
    const tov::TovRef<FreeImage> bitmap = FreeImage::load(path.c_str());
    RenderPicture picture{bitmap->getWidth(), bitmap->getHeight(), {}};
    picture.values.resize(picture.width * picture.height * 3);
    Image pixels = picture.view();
    pixels.copyFrom(*bitmap->asImage());
    pixels.flipVertical();
    return picture;
}

class TiledDenoiseTest : public DirectoryTest {
protected:
    static Outcome run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), ZQX_TILED_DENOISE);
        return runCommand(arguments);
    }

    Outcome runOnSample(const std::vector<std::string>& options) const {
        std::vector<std::string> arguments = {sample("color.exr"), sample("albedo.exr"), sample("normal.exr"),
                                              at("denoised.exr")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return run(arguments);
    }

    static void expectRefused(const Outcome& outcome, int exitCode, const std::string& words) {
        EXPECT_EQ(exitCode, outcome.exitCode);
        EXPECT_EQ(0U, outcome.err.find("tiled_denoise: " + words)) << outcome.err;
    }

    void expectGainOfEightDecibels() const {
        const RenderPicture reference = toneMapped(readRender("reference.exr"));
        const double before = signalToNoise(toneMapped(readRender("color.exr")), reference);
        EXPECT_GE(signalToNoise(toneMapped(readOutput(at("denoised.exr"))), reference), before + 8);
    }
};

TEST_F(TiledDenoiseTest, SixteenTilesAreWithinTheBound) {
    const Outcome outcome = runOnSample({"--tile", "208", "--compare"});
    EXPECT_EQ(0, outcome.exitCode) << outcome.out << outcome.err;
    EXPECT_NE(std::string::npos, outcome.out.find("along seams:")) << outcome.out;
    expectGainOfEightDecibels();
}

TEST_F(TiledDenoiseTest, FourTilesAreWithinTheBound) {
    const Outcome outcome = runOnSample({"--tile", "240", "--compare"});
    EXPECT_EQ(0, outcome.exitCode) << outcome.out << outcome.err;
    EXPECT_NE(std::string::npos, outcome.out.find("along seams:")) << outcome.out;
    expectGainOfEightDecibels();
}

TEST_F(TiledDenoiseTest, OneTileIsEnoughForASmallRender) {
    const Outcome outcome = runOnSample({});
    EXPECT_EQ(0, outcome.exitCode) << outcome.err;
    expectGainOfEightDecibels();
}

TEST_F(TiledDenoiseTest, TileThatIsNoMultipleOfSixteenIsRefused) {
    expectRefused(runOnSample({"--tile", "250"}), 2, "--tile 250: has to be a multiple of 16, and 208 or more");
}

TEST_F(TiledDenoiseTest, TileThatIsAllOverlapIsRefused) {
    expectRefused(runOnSample({"--tile", "192"}), 2, "--tile 192: has to be a multiple of 16, and 208 or more");
}

TEST_F(TiledDenoiseTest, TileThatIsNoNumberIsRefused) {
    expectRefused(runOnSample({"--tile", "256px"}), 2, "--tile 256px: has to be");
    expectRefused(runOnSample({"--tile"}), 2, "--tile : has to be");
}

TEST_F(TiledDenoiseTest, UnknownOptionIsRefused) {
    expectRefused(runOnSample({"--overlap"}), 2, "--overlap: there is no such option");
}

TEST_F(TiledDenoiseTest, MissingFilesAreCounted) {
    const Outcome outcome = run({"color.exr", "albedo.exr"});
    expectRefused(outcome, 2, "four files are needed, not 2");
    EXPECT_NE(std::string::npos, outcome.err.find("usage: tiled_denoise COLOR ALBEDO NORMAL OUTPUT.exr"))
        << outcome.err;
}

TEST_F(TiledDenoiseTest, FileThatIsNoPictureIsNamed) {
    writeFile(at("text.exr"), "no picture");
    expectRefused(run({at("text.exr"), sample("albedo.exr"), sample("normal.exr"), at("denoised.exr")}), 1,
                  at("text.exr") + ": cannot be read");
    EXPECT_EQ(std::vector<std::string>{"text.exr"}, files());
}

TEST_F(TiledDenoiseTest, OutputThatCannotBeWrittenIsNamed) {
    expectRefused(run({sample("color.exr"), sample("albedo.exr"), sample("normal.exr"), at("missing/denoised.exr")}), 1,
                  at("missing/denoised.exr") + ": cannot be written");
}

/// Four times as wide and as high, by mirroring: every edge goes on in its mirror image.
RenderPicture mirrored(const RenderPicture& picture) {
    const auto reflect = [](std::size_t i, std::size_t length) {
        return i % (2 * length) < length ? i % length : length - 1 - i % length;
    };
    RenderPicture large{picture.width * 4, picture.height * 4, {}};
    for (std::size_t y = 0; y < large.height; ++y) {
        for (std::size_t x = 0; x < large.width; ++x) {
            const std::size_t pixel = reflect(y, picture.height) * picture.width + reflect(x, picture.width);
            const auto value = picture.values.begin() + static_cast<std::ptrdiff_t>(3 * pixel);
            large.values.insert(large.values.end(), value, value + 3);
        }
    }
    return large;
}

RenderPicture denoise(RenderPicture& color, RenderPicture& albedo, RenderPicture& normal, std::size_t tileSize) {
    RenderPicture denoised = blackLike(color);
    TiledDenoiser denoiser(tileSize);
    denoiser.setInput(DenoisingFilter::COLOR, color.view());
    denoiser.setInput(DenoisingFilter::ALBEDO, albedo.view());
    denoiser.setInput(DenoisingFilter::NORMAL, normal.view());
    denoiser.setOutput(denoised.view());
    EXPECT_TRUE(denoiser.execute()) << denoiser.getErrorMessage();
    return denoised;
}

TEST(TiledDenoiserTest, MegapixelInSixteenTilesIsWithinTheBound) {
    RenderPicture color = mirrored(readRender("color.exr"));
    RenderPicture albedo = mirrored(readRender("albedo.exr"));
    RenderPicture normal = mirrored(readRender("normal.exr"));
    const ToneCurve curve(color.view());
    Image pixels = color.view();
    curve.encode(pixels);

    constexpr std::size_t TILE = 400;
    RenderPicture tiled = denoise(color, albedo, normal, TILE);
    RenderPicture whole = denoise(color, albedo, normal, 1024);
    for (RenderPicture* picture : {&tiled, &whole}) {
        Image denoised = picture->view();
        curve.decode(denoised);
    }
    EXPECT_GT(*std::ranges::max_element(whole.values), 1.0F);
    const Comparison comparison = compare(tiled.view(), whole.view(), TILE);
    EXPECT_LE(comparison.alongSeams.largest, TiledDenoiser::BOUND);
    EXPECT_LE(comparison.elsewhere.largest, TiledDenoiser::BOUND);
}

RenderPicture row(const std::vector<float>& values) {
    return {values.size() / 3, 1, values};
}

std::vector<float> encoded(RenderPicture picture) {
    Image pixels = picture.view();
    ToneCurve(pixels).encode(pixels);
    return picture.values;
}

TEST(ToneCurveTest, BrightestValueBecomesOneAndBlackStays) {
    const std::vector<float> values = encoded(row({0, 0.5F, 25}));
    EXPECT_EQ(0.0F, values[0]);
    EXPECT_NEAR(0.0756F, values[1], 1e-4F);
    EXPECT_EQ(1.0F, values[2]);
}

TEST(ToneCurveTest, DecodingUndoesEncoding) {
    RenderPicture picture = row({0.01F, 0.5F, 25});
    const ToneCurve curve(picture.view());
    EXPECT_NEAR(0.01F, curve.decode(curve.encode(0.01F)), 1e-6F);
    EXPECT_NEAR(0.5F, curve.decode(curve.encode(0.5F)), 1e-5F);
    EXPECT_NEAR(25.0F, curve.decode(curve.encode(25.0F)), 1e-3F);
}

TEST(ToneCurveTest, PictureTwiceAsBrightGetsTheSameValues) {
    const std::vector<float> once = encoded(row({0.125F, 0.5F, 3}));
    const std::vector<float> twice = encoded(row({0.25F, 1, 6}));
    for (std::size_t i = 0; i < once.size(); ++i) {
        EXPECT_NEAR(once[i], twice[i], 1e-6F) << i;
    }
}

TEST(ToneCurveTest, BlackPictureStaysBlack) {
    EXPECT_EQ((std::vector<float>{0, 0, 0}), encoded(row({0, 0, 0})));
}

TEST(ToneCurveTest, ValuesThatAreNoLightDoNotSpoilTheOthers) {
    constexpr float INFINITE = std::numeric_limits<float>::infinity();
    constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
    const std::vector<float> values = encoded(row({INFINITE, 1e30F, NOT_A_NUMBER, -2, 0.5F, 25}));
    const std::vector<float> expected = {1, 1, 0, 0, 0.0756F, 1};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_NEAR(expected[i], values[i], 1e-4F) << i;
    }
}

TEST(ToneCurveTest, FourthFloatOfAPixelIsLeftAlone) {
    std::vector<float> pixel = {1, 1, 1, 0.75F};
    Image picture(pixel.data(), 1, 1, Image::RGBA32F, 0);
    ToneCurve(picture).encode(picture);
    EXPECT_EQ(0.75F, pixel[3]);
}

/// One row of two tiles of 208 pixels; their cross-fade is in columns 104 to 119.
class ComparisonTest : public testing::Test {
protected:
    static constexpr std::size_t WIDTH = 224;
    static constexpr std::size_t TILE = 208;
    RenderPicture whole{WIDTH, 1, std::vector<float>(WIDTH * 3, 0.5F)};
    RenderPicture tiled = whole;

    Comparison compareAfterSetting(std::size_t column, float value) {
        tiled.values[column * 3 + 1] = value;
        return compare(tiled.view(), whole.view(), TILE);
    }
};

TEST_F(ComparisonTest, EqualPicturesDifferNowhere) {
    const Comparison comparison = compare(tiled.view(), whole.view(), TILE);
    EXPECT_EQ(0.0, comparison.alongSeams.largest);
    EXPECT_EQ(0.0, comparison.elsewhere.largest);
    EXPECT_EQ(48U, comparison.alongSeams.count);
    EXPECT_EQ(624U, comparison.elsewhere.count);
}

TEST_F(ComparisonTest, DifferenceInTheCrossFadeIsAlongTheSeam) {
    const Comparison comparison = compareAfterSetting(104, 0.75F);
    EXPECT_EQ(0.5, comparison.alongSeams.largest);
    EXPECT_EQ(0.5 / 48, comparison.alongSeams.mean());
    EXPECT_EQ(0.0, comparison.elsewhere.largest);
}

TEST_F(ComparisonTest, DifferenceBesideTheCrossFadeIsElsewhere) {
    const Comparison comparison = compareAfterSetting(103, 0.25F);
    EXPECT_EQ(0.0, comparison.alongSeams.largest);
    EXPECT_EQ(0.5, comparison.elsewhere.largest);
}

TEST_F(ComparisonTest, InTheDarkDifferencesAreMeasuredAgainstATwentieth) {
    whole.values.assign(WIDTH * 3, 0.0F);
    tiled = whole;
    EXPECT_NEAR(0.2, compareAfterSetting(0, 0.01F).elsewhere.largest, 1e-6);
}

TEST_F(ComparisonTest, NotANumberIsWithinNoBound) {
    EXPECT_FALSE(compareAfterSetting(0, std::numeric_limits<float>::quiet_NaN()).isWithin(1e30));
}

TEST_F(ComparisonTest, BoundHoldsForSeamsAndElsewhere) {
    EXPECT_TRUE(compareAfterSetting(0, 0.5F).isWithin(0.1));
    EXPECT_FALSE(compareAfterSetting(110, 0.75F).isWithin(0.1));
    tiled = whole;
    EXPECT_FALSE(compareAfterSetting(10, 0.75F).isWithin(0.1));
}

} // namespace
} // namespace tiled_denoise
