// The size of pictures by their first bytes, for every format that is understood, and for files that lie.
#include <algorithm>
#include <filesystem>
#include <random>

#include "zqx/pictures/bytes/PictureHeader.h"

#include <cli/Pictures.h>
#include <support/DirectoryTest.h>
#include <support/Process.h>

namespace zqx::pictures {

namespace {

constexpr unsigned WIDTH = 301;
constexpr unsigned HEIGHT = 47;

class PictureHeaderTest : public img::test::DirectoryTest {
protected:
    void expectHeader(const std::string& name, unsigned channels, unsigned bits) const {
        const std::optional<PictureHeader> header = readPictureHeader(at(name));
        ASSERT_TRUE(header) << name;
        EXPECT_EQ(header->width, WIDTH) << name;
        EXPECT_EQ(header->height, HEIGHT) << name;
        EXPECT_EQ(header->channels, channels) << name;
        EXPECT_EQ(header->bitsPerChannel, bits) << name;
    }
};

} // namespace

TEST_F(PictureHeaderTest, PicturesOfBytes) {
    const img::test::Bitmap picture = img::test::paint(WIDTH, HEIGHT, 24, img::test::motley);
    for (const char* name : {"a.png", "a.jpg", "a.tif", "a.bmp", "a.tga", "a.ppm", "a.jp2", "a.j2k", "a.psd"}) {
        img::test::writePicture(at(name), picture);
        expectHeader(name, 3, 8);
    }
}

TEST_F(PictureHeaderTest, PicturesWithAlpha) {
    const img::test::Bitmap picture = img::test::paint(WIDTH, HEIGHT, 32, img::test::motley);
    for (const char* name : {"a.png", "a.tif", "a.bmp", "a.tga"}) {
        img::test::writePicture(at(name), picture);
        expectHeader(name, 4, 8);
    }
}

TEST_F(PictureHeaderTest, EachKindOfWebp) {
    const img::test::Bitmap opaque = img::test::paint(WIDTH, HEIGHT, 24, img::test::motley);
    const img::test::Bitmap clear = img::test::paint(WIDTH, HEIGHT, 32, img::test::motley);
    img::test::writePicture(at("lossy.webp"), opaque);
    img::test::writePicture(at("alpha.webp"), clear);
    img::test::writePicture(at("lossless.webp"), opaque, WEBP_LOSSLESS);
    expectHeader("lossy.webp", 3, 8);
    expectHeader("alpha.webp", 4, 8);
    expectHeader("lossless.webp", 4, 8);
}

TEST_F(PictureHeaderTest, PicturesOfSixteenBits) {
    const img::test::Bitmap picture = img::test::fillSamples(FIT_RGB16, 48, WIDTH, HEIGHT);
    for (const char* name : {"a.png", "a.tif", "a.ppm", "a.jp2"}) {
        img::test::writePicture(at(name), picture);
        expectHeader(name, 3, 16);
    }
}

TEST_F(PictureHeaderTest, PicturesOfFloats) {
    const img::test::Bitmap picture = img::test::fillSamples(FIT_RGBF, 96, WIDTH, HEIGHT);
    for (const char* name : {"a.tif", "a.pfm", "a.hdr", "a.exr"}) {
        img::test::writePicture(at(name), picture);
        expectHeader(name, 3, 32);
    }
    img::test::writePicture(at("grey.exr"), img::test::fillSamples(FIT_FLOAT, 32, WIDTH, HEIGHT));
    expectHeader("grey.exr", 1, 32);
    img::test::writePicture(at("alpha.exr"), img::test::fillSamples(FIT_RGBAF, 128, WIDTH, HEIGHT));
    expectHeader("alpha.exr", 4, 32);
}

TEST_F(PictureHeaderTest, GreyAndPalettes) {
    const auto grey = [](unsigned i) {
        return img::test::Rgba{static_cast<int>(i), static_cast<int>(i), static_cast<int>(i)};
    };
    const auto color = [](unsigned i) { return img::test::Rgba{static_cast<int>(i), 0, 0}; };
    const auto index = [](unsigned x, unsigned y) { return (x + y) % 256; };
    img::test::writePicture(at("grey.tif"), img::test::paintIndexed(WIDTH, HEIGHT, 8, grey, index));
    img::test::writePicture(at("grey.jpg"), img::test::paintIndexed(WIDTH, HEIGHT, 8, grey, index));
    img::test::writePicture(at("palette.tif"), img::test::paintIndexed(WIDTH, HEIGHT, 8, color, index));
    img::test::writePicture(at("palette.gif"), img::test::paintIndexed(WIDTH, HEIGHT, 8, color, index));
    expectHeader("grey.tif", 1, 8);
    expectHeader("grey.jpg", 1, 8);
    expectHeader("palette.tif", 3, 8);
    expectHeader("palette.gif", 4, 8);
}

TEST_F(PictureHeaderTest, PortableMapWithComments) {
    img::test::writeFile(at("a.pgm"), "P5 # grey\n# another\n301\t47 # size\n65535\nxx");
    expectHeader("a.pgm", 1, 16);
}

TEST_F(PictureHeaderTest, JpegWithLargeSegmentsInFront) {
    img::test::writePicture(at("a.jpg"), img::test::paint(WIDTH, HEIGHT, 24, img::test::motley));
    std::string file = img::test::readFile(at("a.jpg"));
    std::string segment("\xFF\xEF\xFF\xFF", 4); // 65535 bytes with its length
    segment.resize(2 + 65535, 'x');
    file.insert(2, segment + segment + segment);
    img::test::writeFile(at("a.jpg"), file);
    expectHeader("a.jpg", 3, 8);
}

TEST_F(PictureHeaderTest, WhatIsNotUnderstoodSaysNothing) {
    EXPECT_FALSE(readPictureHeader(at("missing.png")));
    img::test::writeFile(at("empty.png"), "");
    EXPECT_FALSE(readPictureHeader(at("empty.png")));
    img::test::writeFile(at("text.png"), "no picture at all");
    EXPECT_FALSE(readPictureHeader(at("text.png")));
    img::test::writeFile(at("short.png"), "\x89PNG\r\n\x1A\n");
    EXPECT_FALSE(readPictureHeader(at("short.png")));
}

TEST_F(PictureHeaderTest, DamagedFilesDoNoHarm) {
    std::mt19937 random(7);
    const img::test::Bitmap bytes = img::test::paint(64, 48, 24, img::test::motley);
    const img::test::Bitmap palette(FreeImage_ConvertTo8Bits(bytes.get()));
    const img::test::Bitmap floats = img::test::fillSamples(FIT_RGBF, 96, 64, 48);
    for (const char* name : {"a.png", "a.jpg", "a.tif", "a.bmp", "a.tga", "a.ppm", "a.jp2", "a.j2k", "a.psd", "a.exr",
                             "a.hdr", "a.pfm", "a.webp", "a.gif"}) {
        const FREE_IMAGE_FORMAT format = FreeImage_GetFIFFromFilename(name);
        const bool holdsFloats = FreeImage_FIFSupportsExportType(format, FIT_RGBF) != 0;
        img::test::writePicture(at(name), format == FIF_GIF ? palette : holdsFloats ? floats : bytes);
        const std::string whole = img::test::readFile(at(name));
        for (int round = 0; round < 60; ++round) {
            std::string file = whole.substr(0, random() % 4 == 0 ? random() % whole.size() : whole.size());
            for (int i = 0; i < 4 && !file.empty(); ++i) {
                file[random() % std::min<std::size_t>(file.size(), 400)] = static_cast<char>(random());
            }
            img::test::writeFile(at(name), file);
            const std::optional<PictureHeader> header = readPictureHeader(at(name));
            ASSERT_TRUE(!header || (header->width > 0 && header->width <= 0xFFFFFFFF && header->height > 0 &&
                                    header->height <= 0xFFFFFFFF && header->channels >= 1 && header->channels <= 4 &&
                                    header->bitsPerChannel >= 1 && header->bitsPerChannel <= 64))
                << name << " in round " << round;
        }
    }
}

} // namespace zqx::pictures
