// The library for other programs, through its public headers alone and without a metadata codec.
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include <zqx/img/ColorGrading.h>
#include <zqx/pictures/Diagnostics.h>
#include <zqx/pictures/Reader.h>
#include <zqx/pictures/Writer.h>

namespace zqx::pictures {

namespace {

/// The least that counts as an ICC profile of RGB: a header that tells its own size.
std::vector<unsigned char> profile() {
    std::vector<unsigned char> bytes(128, 0);
    bytes[3] = 128;
    const std::string space = "RGB ";
    const std::string signature = "acsp";
    std::copy(space.begin(), space.end(), bytes.begin() + 16);
    std::copy(signature.begin(), signature.end(), bytes.begin() + 36);
    return bytes;
}

class PublicApiTest : public ::testing::Test {
protected:
    PublicApiTest() { std::filesystem::create_directory(mFolder); }
    ~PublicApiTest() override { std::filesystem::remove_all(mFolder); }
    std::string at(const char* name) const { return (mFolder / name).string(); }

    /// 16-bit colour in which every pixel differs.
    Picture ramp() const {
        Picture picture;
        picture.pixels = PixelBuffer(64, 32, SampleLayout::RGB32F);
        picture.stored = SampleLayout::RGB16;
        for (std::size_t y = 0; y < 32; ++y) {
            auto* row = static_cast<float*>(picture.image().getRowPtr(y));
            for (std::size_t i = 0; i < 64 * 3; ++i) {
                row[i] = static_cast<float>(y * 192 + i) / 6144.0F;
            }
        }
        picture.metadata.icc = profile();
        picture.metadata.resolution = {11811, 11811};
        return picture;
    }

private:
    std::filesystem::path mFolder =
        std::filesystem::temp_directory_path() /
        ("zqx-api-" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
};

} // namespace

TEST_F(PublicApiTest, SixteenBitTiffIsGradedAndKeepsItsProfile) {
    writePicture(ramp(), at("scan.tif"));
    Picture scan = readPicture(at("scan.tif"));
    img::ColorGrading grading;
    grading.setExposure(-1.0F);
    grading.apply(scan.image(), scan.image());
    writePicture(scan, at("graded.tif"));

    const HeaderInfo info = examinePicture(at("graded.tif"));
    EXPECT_EQ(info.format, FileFormat::TIFF);
    EXPECT_EQ(info.bitsPerChannel, 16U);
    const Picture graded = readPicture(at("graded.tif"));
    EXPECT_EQ(graded.stored, SampleLayout::RGB16);
    EXPECT_EQ(graded.metadata.icc, profile());
    EXPECT_EQ(graded.metadata.resolution, (Resolution{11811, 11811}));
    const auto* before = static_cast<const float*>(scan.image().getPixelPtr(40, 20));
    const auto* after = static_cast<const float*>(graded.image().getPixelPtr(40, 20));
    EXPECT_NEAR(after[1], before[1], 1e-4F);
    EXPECT_NEAR(after[1], 0.5F * static_cast<float>(20 * 192 + 121) / 6144.0F, 1e-3F);
}

TEST_F(PublicApiTest, PixelsOfAnyFormatAreWritten) {
    Picture picture;
    auto rgb = std::make_shared<img::Image>(2, 1, img::Image::SRGB8, 1);
    const unsigned char bytes[] = {200, 120, 40, 20, 60, 90};
    std::copy(std::begin(bytes), std::end(bytes), static_cast<unsigned char*>(rgb->getDataPtr()));
    picture.pixels = PixelBuffer(rgb);
    writePicture(picture, at("a.png"));
    const Picture read = readPicture(at("a.png"));
    const auto* pixel = static_cast<const unsigned char*>(read.image().getPixelPtr(1, 0));
    EXPECT_EQ(pixel[0], 90); // blue comes first
    EXPECT_EQ(pixel[2], 20);
    EXPECT_EQ(static_cast<const unsigned char*>(rgb->getPixelPtr(1, 0))[0], 20); // which did not change
}

TEST_F(PublicApiTest, WhatCannotBeWrittenIsAnErrorAndLeavesNothing) {
    EXPECT_THROW(writePicture(ramp(), at("a.xyz")), UsageError);
    EXPECT_THROW(writePicture(Picture(), at("a.png")), Error);
    EXPECT_THROW(readPicture(at("missing.png")), Error);
    EXPECT_FALSE(std::filesystem::exists(at("a.png")));
}

TEST_F(PublicApiTest, BlocksThatNeedACodecAreLeftOutWithAWarning) {
    Picture picture = ramp();
    picture.metadata.xmp = "<x:xmpmeta/>";
    std::string warnings;
    const WarningListener listener([&](const std::string& line) { warnings += line; });
    writePicture(picture, at("a.tif"));
    EXPECT_NE(warnings.find("no metadata codec is installed"), std::string::npos) << warnings;
}

} // namespace zqx::pictures
