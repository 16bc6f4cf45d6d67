// What a comparison finds, from pixels in memory.
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include <zqx/tools/Compare.h>

namespace zqx::tools {

using namespace pictures;

namespace {

constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();

/// A picture of one row.
template <typename Sample>
Picture makePicture(SampleLayout stored, const std::vector<Sample>& samples) {
    Picture picture;
    picture.pixels = PixelBuffer(samples.size() / channelCount(stored), 1, workingLayout(stored));
    std::copy(samples.begin(), samples.end(), static_cast<Sample*>(picture.image().getDataPtr()));
    picture.stored = stored;
    return picture;
}

Picture grey(const std::vector<unsigned char>& codes) {
    return makePicture(SampleLayout::GRAY8, codes);
}

Picture greyFloat(const std::vector<float>& values) {
    return makePicture(SampleLayout::GRAY32F, values);
}

} // namespace

TEST(CompareTest, EqualPicturesAreInfinitelyAlike) {
    const Comparison found = compare(grey({0, 128, 255}), grey({0, 128, 255}));
    EXPECT_EQ(found.largest, 0.0);
    EXPECT_EQ(found.mean, 0.0);
    EXPECT_EQ(found.pixels, 3U);
    EXPECT_EQ(found.differingPixels, 0U);
    EXPECT_TRUE(std::isinf(found.psnr));
    EXPECT_GT(found.psnr, 0.0);
}

TEST(CompareTest, EncodedPicturesDifferByCodes) {
    const Comparison found = compare(grey({10, 20, 30, 40}), grey({10, 23, 30, 39}));
    EXPECT_TRUE(found.scale.encoded);
    EXPECT_EQ(found.scale.white, 255.0);
    EXPECT_EQ(found.largest, 3.0);
    EXPECT_EQ(found.x, 1U);
    EXPECT_EQ(found.y, 0U);
    EXPECT_EQ(found.mean, 1.0);
    EXPECT_EQ(found.differingPixels, 2U);
    EXPECT_DOUBLE_EQ(found.psnr, 10.0 * std::log10(255.0 * 255.0 / 2.5));
}

TEST(CompareTest, BytesAndSixteenBitsMeetOnTheFinerScale) {
    const float white = 1.0F;
    const Comparison found = compare(grey({255, 0}), makePicture<float>(SampleLayout::GRAY16, {white, 0.0F}));
    EXPECT_EQ(found.scale.white, 65535.0);
    EXPECT_EQ(found.largest, 0.0);
}

TEST(CompareTest, FloatsAreComparedAsLinearLight) {
    const Comparison found = compare(greyFloat({0.25F, 3.0F}), greyFloat({0.5F, 3.0F}));
    EXPECT_FALSE(found.scale.encoded);
    EXPECT_EQ(found.largest, 0.25);
    EXPECT_EQ(found.x, 0U);
}

TEST(CompareTest, WhatIsNoNumberEqualsItsLikeAndNothingElse) {
    EXPECT_EQ(compare(greyFloat({NOT_A_NUMBER}), greyFloat({NOT_A_NUMBER})).largest, 0.0);
    EXPECT_TRUE(std::isinf(compare(greyFloat({NOT_A_NUMBER}), greyFloat({0.0F})).largest));
}

TEST(CompareTest, ChannelsAreCountedFromRedWhateverTheOrderInMemory) {
    const bool blueFirst = PixelBuffer(1, 1, SampleLayout::RGB8).image().isBGR();
    std::vector<unsigned char> moved = {0, 0, 0};
    moved[blueFirst ? 2 : 0] = 9;
    const Comparison found = compare(makePicture<unsigned char>(SampleLayout::RGB8, {0, 0, 0}),
                                     makePicture<unsigned char>(SampleLayout::RGB8, moved));
    EXPECT_EQ(found.channel, 0U);
    EXPECT_EQ(found.largest, 9.0);
}

TEST(CompareTest, SizesAndChannelsHaveToFit) {
    EXPECT_TRUE(isComparable(grey({0, 1}), grey({2, 3})));
    EXPECT_TRUE(isComparable(grey({0}), greyFloat({0.0F})));
    EXPECT_FALSE(isComparable(grey({0, 1}), grey({2})));
    EXPECT_FALSE(isComparable(grey({0}), makePicture<unsigned char>(SampleLayout::RGB8, {0, 0, 0})));
}

TEST(CompareTest, ThePaintedDifferencesReachWhite) {
    const Picture a = grey({10, 20, 30, 40});
    const Picture b = grey({10, 24, 31, 38});
    const PixelBuffer painted = paintDifferences(a, b, compare(a, b));
    const auto* row = static_cast<const unsigned char*>(painted.image().getRowPtr(0));
    EXPECT_EQ(std::vector<unsigned char>(row, row + 4), (std::vector<unsigned char>{0, 255, 64, 128}));
}

TEST(CompareTest, TheSmallestDifferenceShows) {
    const Picture a = greyFloat({0.0F, 0.0F});
    const Picture b = greyFloat({1.0F, 1e-30F});
    const PixelBuffer painted = paintDifferences(a, b, compare(a, b));
    EXPECT_EQ(static_cast<const unsigned char*>(painted.image().getRowPtr(0))[1], 1);
}

} // namespace zqx::tools
