// Denoising of plain arrays: what is handed to the filter, what comes back, and the buffers kept between calls.
#include <algorithm>

#include "StandInTest.h"

namespace {

using zqx::img::denoiseImage;

/// The arrays of one picture, which the stand-in turns into 0.5 * 4 + 0.25 * 8 + 0.125 * 16 = 6. Every alpha differs.
struct Arrays {
    static constexpr float DENOISED = 6;

    Arrays(std::size_t columns, std::size_t rows)
        : width(columns), height(rows), color(columns * rows * 4, 4), albedo(columns * rows * 3, 8),
          normal(columns * rows * 3, 16) {
        for (std::size_t pixel = 0; pixel < columns * rows; ++pixel) {
            color[pixel * 4 + 3] = alpha(pixel);
        }
    }

    static float alpha(std::size_t pixel) { return 100 + static_cast<float>(pixel); }

    bool denoise(std::string& error, bool hdr = false) {
        return denoiseImage(color.data(), albedo.data(), normal.data(), width, height, hdr, error);
    }

    void expectColor(float expected) const {
        for (std::size_t pixel = 0; pixel < width * height; ++pixel) {
            const std::vector<float> rgba(&color[pixel * 4], &color[pixel * 4] + 4);
            EXPECT_EQ((std::vector<float>{expected, expected, expected, alpha(pixel)}), rgba) << "pixel " << pixel;
        }
    }

    std::size_t width;
    std::size_t height;
    std::vector<float> color;
    std::vector<float> albedo;
    std::vector<float> normal;
};

class DenoiseImageWithVersion1 : public StandInTest {
protected:
    void denoise(Arrays& arrays, bool hdr = false) {
        forgetCalls();
        EXPECT_TRUE(arrays.denoise(error, hdr)) << error;
        arrays.expectColor(Arrays::DENOISED);
    }

    /// What was said of an image in the only run since the calls were forgotten: "pixels, format, width, ...)".
    std::string getArguments(const std::string& image) const {
        const std::string start = "oidnSetSharedFilterImage(filter 1, " + image + ", ";
        for (const std::string& call : calls()) {
            if (call.starts_with(start)) {
                return call.substr(start.size());
            }
        }
        return "not set";
    }

    bool wasCalled(const std::string& call) const {
        const Calls all = calls();
        return std::find(all.begin(), all.end(), call) != all.end();
    }

    std::string error = "untouched";
};

TEST_F(DenoiseImageWithVersion1, ReplacesColourAndKeepsAlpha) {
    Arrays arrays(4, 2);
    EXPECT_TRUE(arrays.denoise(error));
    arrays.expectColor(Arrays::DENOISED);
}

TEST_F(DenoiseImageWithVersion1, EveryPixelComesFromItsOwn) {
    Arrays arrays(3, 2);
    for (std::size_t pixel = 0; pixel < 6; ++pixel) {
        for (std::size_t channel = 0; channel < 3; ++channel) {
            arrays.color[pixel * 4 + channel] = static_cast<float>(pixel * 3 + channel);
            arrays.albedo[pixel * 3 + channel] = static_cast<float>(pixel * 3 + channel);
            arrays.normal[pixel * 3 + channel] = static_cast<float>(pixel * 3 + channel);
        }
    }
    EXPECT_TRUE(arrays.denoise(error));
    for (std::size_t pixel = 0; pixel < 6; ++pixel) {
        for (std::size_t channel = 0; channel < 3; ++channel) {
            EXPECT_EQ(0.875F * static_cast<float>(pixel * 3 + channel), arrays.color[pixel * 4 + channel]);
        }
    }
}

TEST_F(DenoiseImageWithVersion1, SuccessLeavesTheErrorAlone) {
    Arrays arrays(4, 2);
    EXPECT_TRUE(arrays.denoise(error));
    EXPECT_EQ("untouched", error);
}

TEST_F(DenoiseImageWithVersion1, AlbedoAndNormalAreReadWhereTheyAre) {
    Arrays arrays(4, 2);
    denoise(arrays);
    EXPECT_EQ(address(arrays.albedo.data()) + ", 3, 4, 2, 0, 12, 48)", getArguments("albedo"));
    EXPECT_EQ(address(arrays.normal.data()) + ", 3, 4, 2, 0, 12, 48)", getArguments("normal"));
}

TEST_F(DenoiseImageWithVersion1, ColourIsPackedInBuffersOfItsOwn) {
    Arrays arrays(4, 2);
    denoise(arrays);
    const std::string input = getArguments("color");
    const std::string output = getArguments("output");
    EXPECT_TRUE(input.ends_with(", 3, 4, 2, 0, 12, 48)")) << input;
    EXPECT_TRUE(output.ends_with(", 3, 4, 2, 0, 12, 48)")) << output;
    EXPECT_NE(input, output);
    EXPECT_FALSE(input.starts_with(address(arrays.color.data()) + ",")) << input;
    EXPECT_FALSE(output.starts_with(address(arrays.color.data()) + ",")) << output;
}

TEST_F(DenoiseImageWithVersion1, TellsWhetherTheColourIsHdr) {
    Arrays first(4, 2);
    denoise(first, true);
    EXPECT_TRUE(wasCalled("oidnSetFilter1b(filter 1, hdr, true)"));
    EXPECT_TRUE(wasCalled("oidnSetFilter1b(filter 1, srgb, false)"));
    Arrays second(4, 2);
    denoise(second, false);
    EXPECT_TRUE(wasCalled("oidnSetFilter1b(filter 1, hdr, false)"));
    EXPECT_TRUE(wasCalled("oidnSetFilter1b(filter 1, srgb, true)"));
}

// Buffers

TEST_F(DenoiseImageWithVersion1, SameSizeReusesTheBuffers) {
    Arrays first(4, 2);
    denoise(first);
    const std::string input = getArguments("color");
    const std::string output = getArguments("output");
    Arrays second(4, 2);
    denoise(second);
    EXPECT_EQ(input, getArguments("color"));
    EXPECT_EQ(output, getArguments("output"));
}

TEST_F(DenoiseImageWithVersion1, SamePixelCountReusesTheBuffers) {
    Arrays wide(4, 2);
    denoise(wide);
    const std::string input = getArguments("color");
    const std::string output = getArguments("output");
    Arrays high(2, 4);
    denoise(high);
    const auto pixels = [](const std::string& arguments) { return arguments.substr(0, arguments.find(',')); };
    EXPECT_EQ(pixels(input), pixels(getArguments("color")));
    EXPECT_EQ(pixels(output), pixels(getArguments("output")));
}

TEST_F(DenoiseImageWithVersion1, SizesMayChangeBetweenCalls) {
    for (const std::size_t width : {4U, 64U, 3U, 200U, 1U}) {
        Arrays arrays(width, 5);
        denoise(arrays);
        EXPECT_TRUE(getArguments("output").ends_with(", 3, " + std::to_string(width) + ", 5, 0, 12, " +
                                                     std::to_string(width * 12) + ")"));
    }
}

// Failures

TEST_F(DenoiseImageWithVersion1, FailureOfTheRunIsReportedAndLeavesColourAlone) {
    Arrays arrays(4, 2);
    fail("execution", "image size mismatch");
    EXPECT_FALSE(arrays.denoise(error));
    EXPECT_EQ("image size mismatch", error);
    arrays.expectColor(4);
}

TEST_F(DenoiseImageWithVersion1, FailureWithoutTextEmptiesTheError) {
    Arrays arrays(4, 2);
    fail("execution", "");
    EXPECT_FALSE(arrays.denoise(error));
    EXPECT_EQ("", error);
}

TEST_F(DenoiseImageWithVersion1, FailureAfterASuccessLeavesColourAlone) {
    Arrays first(4, 2);
    denoise(first);
    Arrays second(4, 2);
    fail("execution", "image size mismatch");
    EXPECT_FALSE(second.denoise(error));
    second.expectColor(4);
}

TEST_F(DenoiseImageWithVersion1, FailureOfSetUpIsReportedAndLeavesColourAlone) {
    Arrays arrays(4, 2);
    fail("device", "unsupported device type");
    EXPECT_FALSE(arrays.denoise(error));
    EXPECT_EQ("unsupported device type", error);
    failNoMore();
    EXPECT_FALSE(arrays.denoise(error));
    EXPECT_EQ("Denoiser not available.", error);
    arrays.expectColor(4);
}

TEST_F(DenoiseImageWithVersion1, NullAlbedoIsInvalid) {
    Arrays arrays(4, 2);
    EXPECT_FALSE(denoiseImage(arrays.color.data(), nullptr, arrays.normal.data(), 4, 2, false, error));
    EXPECT_EQ("Invalid Input", error);
    arrays.expectColor(4);
}

TEST_F(DenoiseImageWithVersion1, NullNormalIsInvalid) {
    Arrays arrays(4, 2);
    EXPECT_FALSE(denoiseImage(arrays.color.data(), arrays.albedo.data(), nullptr, 4, 2, false, error));
    EXPECT_EQ("Invalid Input", error);
    arrays.expectColor(4);
}

TEST_F(DenoiseImageWithVersion1, NullColourIsInvalid) {
    Arrays arrays(4, 2);
    EXPECT_FALSE(denoiseImage(nullptr, arrays.albedo.data(), arrays.normal.data(), 4, 2, false, error));
    EXPECT_EQ("Invalid Input", error);
}

TEST_F(DenoiseImageWithVersion1, PictureWithoutWidthTouchesNothing) {
    Arrays arrays(4, 2);
    denoiseImage(arrays.color.data(), arrays.albedo.data(), arrays.normal.data(), 0, 2, false, error);
    arrays.expectColor(4);
}

TEST_F(DenoiseImageWithVersion1, PictureWithoutHeightAfterALargerOneTouchesNothing) {
    Arrays first(4, 2);
    denoise(first);
    Arrays second(4, 2);
    denoiseImage(second.color.data(), second.albedo.data(), second.normal.data(), 4, 0, false, error);
    second.expectColor(4);
    denoise(second);
}

} // namespace
