// Denoising the sample render with the real OpenImageDenoise. Figures are peak signal-to-noise ratios of what a screen
// shows: values limited to [0, 1] and encoded with the power 1/2.2, against the converged picture.
#include <cmath>
#include <cstddef>
#include <iostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/DenoisingFilter.h>

#include "RenderPicture.h"

namespace zqx::img::test {
namespace {

/// Of a gain that differs by a decibel or so between the versions of OpenImageDenoise.
constexpr double LEAST_GAIN_DB = 8;

enum Values { DISPLAY_REFERRED = 0, LINEAR = 1 };

class DenoiseRenderTest : public testing::Test {
protected:
    RenderPicture color = readRender("color.exr");
    RenderPicture albedo = readRender("albedo.exr");
    RenderPicture normal = readRender("normal.exr");
    const RenderPicture shownReference = toneMapped(readRender("reference.exr"));

    static void record(const std::string& what, double decibels) {
        testing::Test::RecordProperty(what, std::to_string(decibels));
        std::cout << what << ": " << decibels << " dB\n";
    }
};

RenderPicture denoise(RenderPicture& color, RenderPicture& albedo, RenderPicture& normal, Values values) {
    RenderPicture denoised = blackLike(color);
    DenoisingFilter filter;
    filter.setInput(DenoisingFilter::COLOR, color.view());
    filter.setInput(DenoisingFilter::ALBEDO, albedo.view());
    filter.setInput(DenoisingFilter::NORMAL, normal.view());
    filter.setOutput(denoised.view());
    filter.setHDR(values == LINEAR);
    EXPECT_TRUE(filter.execute()) << filter.getErrorMessage();
    return denoised;
}

std::vector<float> withAlpha(const RenderPicture& picture, float alpha) {
    std::vector<float> pixels;
    for (std::size_t i = 0; i < picture.values.size(); i += 3) {
        pixels.insert(pixels.end(), {picture.values[i], picture.values[i + 1], picture.values[i + 2], alpha});
    }
    return pixels;
}

TEST_F(DenoiseRenderTest, LinearRenderGainsEightDecibels) {
    const double before = signalToNoise(toneMapped(color), shownReference);
    const double after = signalToNoise(toneMapped(denoise(color, albedo, normal, LINEAR)), shownReference);
    record("linear_before", before);
    record("linear_after", after);
    EXPECT_GE(after - before, LEAST_GAIN_DB);
}

TEST_F(DenoiseRenderTest, DisplayReferredRenderGainsEightDecibels) {
    RenderPicture shown = toneMapped(color);
    const double before = signalToNoise(shown, shownReference);
    const double after = signalToNoise(denoise(shown, albedo, normal, DISPLAY_REFERRED), shownReference);
    record("display_before", before);
    record("display_after", after);
    EXPECT_GE(after - before, LEAST_GAIN_DB);
}

TEST_F(DenoiseRenderTest, GuidesCountEachInItsPlace) {
    RenderPicture none = blackLike(color);
    const double guided = signalToNoise(toneMapped(denoise(color, albedo, normal, LINEAR)), shownReference);
    const double unguided = signalToNoise(toneMapped(denoise(color, none, none, LINEAR)), shownReference);
    const double exchanged = signalToNoise(toneMapped(denoise(color, normal, albedo, LINEAR)), shownReference);
    record("with_guides", guided);
    record("without_guides", unguided);
    record("with_exchanged_guides", exchanged);
    EXPECT_GE(guided, unguided + 1);
    EXPECT_GE(guided, exchanged + 0.5);
}

TEST_F(DenoiseRenderTest, DenoiseImageGivesThePixelsOfTheFilter) {
    std::vector<float> pixels = withAlpha(color, 0.25F);
    std::string error = "untouched";
    ASSERT_TRUE(denoiseImage(pixels.data(), albedo.values.data(), normal.values.data(), color.width, color.height, true,
                             error));
    EXPECT_EQ("untouched", error);
    const std::vector<float> expected = withAlpha(denoise(color, albedo, normal, LINEAR), 0.25F);
    ASSERT_EQ(expected.size(), pixels.size());
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        // The exposure that the library chooses for linear values varies a little from run to run.
        ASSERT_NEAR(expected[i], pixels[i], 1e-4F + 1e-4F * std::fabs(expected[i])) << "float " << i;
    }
}

} // namespace
} // namespace zqx::img::test
