// Gaussian blur: its kernel, its borders, every source and output format.
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/img/GaussianBlur.h>

#include "oracle/Blur.h"
#include "unit/support/Compare.h"
#include "unit/support/Fill.h"
#include "unit/support/GuardedImage.h"
#include "unit/support/Literal.h"

namespace {

using namespace test;
using Floats = std::vector<float>;
using zqx::img::GaussianBlur;

void blur(const Image& source, const Image& output, float sigma) {
    GaussianBlur filter;
    filter.setSrcImage(source);
    filter.setOutput(output);
    filter.setSigma(sigma);
    EXPECT_FALSE(filter.execute()) << "the result is false on every path";
    EXPECT_EQ("", filter.getErrorMessage());
}

/// Row gaps are for byte outputs: rows of float outputs follow each other closely.
Gaps gapsFor(Image::Format output) {
    return {0, oracle::facts(output).isFloat ? 0U : 5U};
}

void expectBlur(const GuardedImage& source, Image::Format to, float sigma, ByteTally& tally) {
    const Image& from = source.image();
    SCOPED_TRACE(getName(from.getFormat(), to) + ", " + std::to_string(from.getWidth()) + " x " +
                 std::to_string(from.getHeight()) + ", sigma " + std::to_string(sigma));
    oracle::Picture expected(from.getWidth(), from.getHeight(), to);
    oracle::blur(source.surface(), expected.surface, sigma);
    const std::vector<unsigned char> before = source.memory();
    GuardedImage output(from.getWidth(), from.getHeight(), to, gapsFor(to));
    blur(from, output.image(), sigma);
    EXPECT_TRUE(nearPixels(output.surface(), expected.surface, FILTER_TOLERANCE, tally));
    EXPECT_TRUE(output.guardsIntact());
    EXPECT_EQ(before, source.memory()) << "the source changed";
}

TEST(GaussianBlurTest, SigmaStartsAtZeroAndIsNotLimited) {
    GaussianBlur filter;
    EXPECT_EQ(0.0F, filter.getSigma());
    for (const float sigma : {2.5F, -1.0F, 1e6F}) {
        filter.setSigma(sigma);
        EXPECT_EQ(sigma, filter.getSigma());
    }
}

TEST(GaussianBlurTest, CopiesAndMovesCarrySigma) {
    GaussianBlur original;
    original.setSigma(1.5F);
    const GaussianBlur copy(original);
    GaussianBlur assigned;
    assigned = original;
    const GaussianBlur moved(std::move(original));
    EXPECT_EQ(1.5F, copy.getSigma());
    EXPECT_EQ(1.5F, assigned.getSigma());
    EXPECT_EQ(1.5F, moved.getSigma());
}

TEST(GaussianBlurTest, SigmaIsHalfTheRadius) {
    EXPECT_EQ(1.5, GaussianBlur::radius2sigma(3));
    EXPECT_EQ(0.0, GaussianBlur::radius2sigma(0));
    EXPECT_EQ(32.0, GaussianBlur::radius2sigma(64));
}

TEST(GaussianBlurTest, KernelReachesTwoSigma) {
    EXPECT_EQ(3U, GaussianBlur::computeKernel(0.4).size());
    EXPECT_EQ(3U, GaussianBlur::computeKernel(0.5).size());
    EXPECT_EQ(5U, GaussianBlur::computeKernel(0.51).size());
    EXPECT_EQ(5U, GaussianBlur::computeKernel(1.0).size());
    EXPECT_EQ(25U, GaussianBlur::computeKernel(6.0).size());
}

TEST(GaussianBlurTest, KernelIsSymmetricAndSumsToOne) {
    for (const double sigma : {0.1, 0.4, 1.0, 2.7, 6.0, 40.0}) {
        const Floats kernel = GaussianBlur::computeKernel(sigma);
        double sum = 0.0;
        for (std::size_t i = 0; i < kernel.size(); ++i) {
            sum += kernel[i];
            EXPECT_NEAR(kernel[kernel.size() - 1 - i], kernel[i], 1e-6) << sigma;
        }
        EXPECT_NEAR(1.0, sum, 1e-5) << sigma;
    }
}

TEST(GaussianBlurTest, TapsAreIntegralsNotSamples) {
    // Normal probabilities of the unit intervals around 0, 1 and 2, normalised over two and a half sigma.
    const Floats kernel = GaussianBlur::computeKernel(1.0);
    EXPECT_NEAR(0.382925 / 0.987581, kernel[2], 1e-5);
    EXPECT_NEAR(0.241730 / 0.987581, kernel[1], 1e-5);
    EXPECT_NEAR(0.060598 / 0.987581, kernel[0], 1e-5);
}

TEST(GaussianBlurTest, KernelFollowsTheIntegrationRule) {
    for (const double sigma : {0.05, 0.1, 0.25, 0.4, 0.5, 0.75, 1.0, 1.3, 2.0, 3.0, 6.0, 17.5, 83.0, 249.4}) {
        const Floats expected = oracle::blurKernel(sigma);
        const Floats kernel = GaussianBlur::computeKernel(sigma);
        ASSERT_EQ(expected.size(), kernel.size()) << sigma;
        for (std::size_t i = 0; i < kernel.size(); ++i) {
            EXPECT_NEAR(expected[i], kernel[i], 1e-8 + 1e-6 * expected[i]) << "sigma " << sigma << ", tap " << i;
        }
    }
}

TEST(GaussianBlurTest, KernelOfSigmaZeroIsNotANumber) {
    const Floats kernel = GaussianBlur::computeKernel(0.0);
    ASSERT_EQ(1U, kernel.size());
    EXPECT_TRUE(std::isnan(kernel[0]));
}

TEST(GaussianBlurTest, KernelOfMoreTapsThanSamplesIsNotANumber) {
    EXPECT_EQ(999U, GaussianBlur::computeKernel(249.5).size());
    EXPECT_TRUE(std::isfinite(GaussianBlur::computeKernel(249.5)[0]));
    const Floats kernel = GaussianBlur::computeKernel(250.0); // one sample per tap: no interval is left between them
    ASSERT_EQ(1001U, kernel.size());
    EXPECT_TRUE(std::isnan(kernel[0]));
    EXPECT_TRUE(std::isnan(kernel[500]));
}

TEST(GaussianBlurTest, SinglePixelKeepsItsValue) {
    for (const float sigma : {0.4F, 1.0F, 6.0F}) {
        FloatPicture source(Image::RGBA32F, 1, {0.25F, 3.0F, -1.0F, 0.5F});
        FloatPicture output(Image::RGBA32F, 1, Floats(4));
        blur(source.image(), output.image(), sigma);
        for (int i = 0; i < 4; ++i) {
            EXPECT_NEAR(source[i], output[i], 1e-5) << sigma;
        }
    }
}

TEST(GaussianBlurTest, UniformImageStaysUniformAtItsBorders) {
    FloatPicture source(Image::GRAY32F, 7, Floats(7 * 9, 0.7F));
    FloatPicture output(Image::GRAY32F, 7, Floats(7 * 9));
    blur(source.image(), output.image(), 3.0F);
    for (const float value : getFloats(output.image())) {
        EXPECT_NEAR(0.7F, value, 2e-6);
    }
}

TEST(GaussianBlurTest, PointSpreadsIntoTheKernelInBothDirections) {
    FloatPicture source(Image::GRAY32F, 7, Floats(7 * 9));
    oracle::storeFloat(getSurface(source.image()).at(4, 3), 1.0F);
    FloatPicture output(Image::GRAY32F, 7, Floats(7 * 9));
    blur(source.image(), output.image(), 1.0F);
    const Floats kernel = GaussianBlur::computeKernel(1.0);
    for (std::size_t y = 0; y < 7; ++y) {
        for (std::size_t x = 0; x < 9; ++x) {
            const bool inside = x >= 2 && x <= 6 && y >= 1 && y <= 5;
            EXPECT_NEAR(inside ? kernel[x - 2] * kernel[y - 1] : 0.0F, output[y * 9 + x], 1e-7) << x << ", " << y;
        }
    }
}

TEST(GaussianBlurTest, AlphaIsBlurredLikeColour) {
    FloatPicture source(Image::RGBA32F, 1, {0, 0, 0, 0, 1, 1, 1, 1, 0, 0, 0, 0});
    FloatPicture output(Image::RGBA32F, 1, Floats(12));
    blur(source.image(), output.image(), 0.4F);
    EXPECT_EQ(output[0], output[3]);
    EXPECT_GT(output[3], 0.0F);
    EXPECT_EQ(output[4], output[7]);
    EXPECT_LT(output[7], 1.0F);
}

TEST(GaussianBlurTest, NotANumberSpreadsAsFarAsTheKernel) {
    FloatPicture source(Image::GRAY32F, 9, Floats(81, 0.5F));
    oracle::storeFloat(getSurface(source.image()).at(4, 4), std::numeric_limits<float>::quiet_NaN());
    FloatPicture output(Image::GRAY32F, 9, Floats(81));
    blur(source.image(), output.image(), 1.0F);
    for (int y = 0; y < 9; ++y) {
        for (int x = 0; x < 9; ++x) {
            EXPECT_EQ(std::abs(x - 4) <= 2 && std::abs(y - 4) <= 2, std::isnan(output[y * 9 + x])) << x << ", " << y;
        }
    }
}

TEST(GaussianBlurTest, SigmaZeroGivesNotANumber) {
    FloatPicture source(Image::GRAY32F, 1, {0.5F, 0.5F});
    FloatPicture output(Image::GRAY32F, 1, {1.0F, 1.0F});
    blur(source.image(), output.image(), 0.0F);
    EXPECT_TRUE(std::isnan(output[0]));
    BytePicture bytes(Image::SGRAY8, 1, {9, 9});
    blur(source.image(), bytes.image(), 0.0F);
    EXPECT_EQ((std::vector<int>{0, 0}), getBytes(bytes.image()));
}

TEST(GaussianBlurTest, AllPairsOfFormats) {
    for (const float sigma : {0.4F, 1.0F, 3.0F}) {
        ByteTally tally;
        forAllPairs([&](Image::Format from, Image::Format to) {
            GuardedImage source(37, 23, from, {0, 12});
            fillPhoto(source.surface(), from * 16 + to);
            expectBlur(source, to, sigma, tally);
        });
        EXPECT_TRUE(tally.withinBound());
    }
}

TEST(GaussianBlurTest, AllSmallSizes) {
    ByteTally tally;
    for (const Image::Format format : ALL_FORMATS) {
        for (std::size_t width = 1; width <= 40; width += width < 9 ? 1 : 7) {
            for (std::size_t height = 1; height <= 20; height += height < 4 ? 1 : 8) {
                GuardedImage source(width, height, format);
                fillPhoto(source.surface(), width * 50 + height);
                for (const float sigma : {0.4F, 3.0F, 12.0F}) {
                    expectBlur(source, format, sigma, tally);
                    expectBlur(source, Image::RGBA32F, sigma, tally);
                }
            }
        }
    }
    EXPECT_TRUE(tally.withinBound());
}

TEST(GaussianBlurTest, LargePictureIsBlurredAcrossAllItsBands) {
    ByteTally tally;
    for (const Image::Format format : {Image::SBGR8, Image::RGBA32F, Image::GRAY8}) {
        GuardedImage source(331, 217, format);
        fillPhoto(source.surface(), 30);
        expectBlur(source, format, 6.0F, tally);
    }
    EXPECT_TRUE(tally.withinBound());
}

TEST(GaussianBlurTest, VeryWidePictureIsBlurredAcrossAllItsStrips) {
    ByteTally tally;
    for (const Image::Format format : {Image::SRGBA8, Image::RGB32F, Image::GRAY8}) {
        GuardedImage source(7013, 3, format);
        fillPhoto(source.surface(), 31);
        expectBlur(source, format, 6.0F, tally);
        expectBlur(source, Image::RGBA32F, 6.0F, tally);
    }
    EXPECT_TRUE(tally.withinBound());
}

TEST(GaussianBlurTest, FloatPicturesAreBlurredInPlace) {
    ByteTally none;
    for (const Image::Format format : FLOAT_FORMATS) {
        GuardedImage image(37, 23, format);
        fillPhoto(image.surface(), 31);
        oracle::Picture expected(37, 23, format);
        oracle::blur(image.surface(), expected.surface, 1.0F);
        blur(image.image(), image.image(), 1.0F);
        EXPECT_TRUE(nearPixels(image.surface(), expected.surface, FILTER_TOLERANCE, none));
        EXPECT_TRUE(image.guardsIntact());
    }
}

TEST(GaussianBlurTest, BytePicturesAreBlurredInPlace) {
    ByteTally tally;
    for (const Image::Format format : ALL_FORMATS) {
        if (!oracle::facts(format).isFloat) {
            GuardedImage image(37, 23, format, {0, 5});
            fillPhoto(image.surface(), 32);
            oracle::Picture expected(37, 23, format);
            oracle::blur(image.surface(), expected.surface, 3.0F);
            blur(image.image(), image.image(), 3.0F);
            EXPECT_TRUE(nearPixels(image.surface(), expected.surface, FILTER_TOLERANCE, tally));
            EXPECT_TRUE(image.guardsIntact());
        }
    }
    EXPECT_TRUE(tally.withinBound());
}

TEST(GaussianBlurTest, RunsAgainWithAnotherSigma) {
    ByteTally none;
    GuardedImage source(20, 10, Image::RGB32F);
    fillPhoto(source.surface(), 33);
    GuardedImage output(20, 10, Image::RGB32F);
    GaussianBlur filter;
    filter.setSrcImage(source.image());
    filter.setOutput(output.image());
    for (const float sigma : {3.0F, 0.4F}) {
        filter.setSigma(sigma);
        filter.execute();
        oracle::Picture expected(20, 10, Image::RGB32F);
        oracle::blur(source.surface(), expected.surface, sigma);
        EXPECT_TRUE(nearPixels(output.surface(), expected.surface, FILTER_TOLERANCE, none));
    }
}

TEST(GaussianBlurTest, AnotherSizeLeavesTheOutputUntouched) {
    for (const Image::Format format : {Image::SRGB8, Image::RGB32F}) {
        GuardedImage source(5, 4, format);
        fillPhoto(source.surface(), 34);
        for (const auto& [width, height] : {std::pair<std::size_t, std::size_t>{4, 4}, {5, 3}, {4, 5}, {6, 4}}) {
            GuardedImage output(width, height, format);
            blur(source.image(), output.image(), 1.0F);
            EXPECT_EQ(GuardedImage(width, height, format).memory(), output.memory());
        }
    }
}

TEST(GaussianBlurTest, ImagesWithoutPixelsAreLeftAlone) {
    forAllPairs([](Image::Format from, Image::Format to) {
        for (const auto& [width, height] : {std::pair<std::size_t, std::size_t>{0, 3}, {3, 0}, {0, 0}}) {
            GuardedImage source(width, height, from);
            GuardedImage output(width, height, to);
            blur(source.image(), output.image(), 1.0F);
            EXPECT_TRUE(output.guardsIntact()) << getName(from, to);
        }
    });
    GaussianBlur unset;
    unset.setSigma(1.0F);
    EXPECT_FALSE(unset.execute()) << "no images at all";
}

TEST(GaussianBlurTest, UnknownFormatsWriteNothing) {
    for (const Image::Format unknown : UNKNOWN_FORMATS) {
        GuardedImage strange(4, 3, unknown, {4, 16});
        GuardedImage bytes(4, 3, Image::RGB8);
        blur(strange.image(), bytes.image(), 1.0F);
        EXPECT_EQ(GuardedImage(4, 3, Image::RGB8).memory(), bytes.memory());
        GuardedImage known(4, 3, Image::RGBA32F);
        fillPhoto(known.surface(), 35);
        blur(known.image(), strange.image(), 1.0F);
        EXPECT_TRUE(strange.guardsIntact());
    }
}

} // namespace
