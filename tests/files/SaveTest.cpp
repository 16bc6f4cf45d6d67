// Files saved by path and by stream, read by another program.
#include "FileTest.h"

namespace zqx::img::test {

enum class Fidelity { EXACT, LOSSY };

struct SaveCase {
    const char* name;
    const char* file;
    FREE_IMAGE_FORMAT format;
    int flags;
    int channels;
    Depth depth;
    Fidelity fidelity = Fidelity::EXACT;
    bool upsideDown = false;
};

namespace {

class SaveTest : public FileTest, public ::testing::WithParamInterface<SaveCase> {
protected:
    SaveTest() : mPath(at(GetParam().file)), mOriginal(paint(content(), GetParam().channels, GetParam().depth)) {}

    static Content content() { return GetParam().fidelity == Fidelity::EXACT ? Content::MOTLEY : Content::SMOOTH; }

    /// Lossy files are what the component itself decodes, and not far from the original.
    void expectPixels() const {
        const double tolerance = mOriginal.depth == Depth::FLOAT ? 4e-7 : 0.0;
        const Samples read = readWithMagick(mPath, mOriginal.channels, mOriginal.depth);
        const Samples seen = GetParam().upsideDown ? flipped(read) : read;
        if (GetParam().fidelity == Fidelity::EXACT) {
            EXPECT_TRUE(isSame(seen, mOriginal, tolerance));
            return;
        }
        const Component again = makeComponent();
        ASSERT_EQ(again->load(DETECT, mPath.c_str(), GetParam().format == FIF_JPEG ? JPEG_ACCURATE : 0), tov::SUCCESS);
        EXPECT_TRUE(isSame(inColour(seen), getSamples(*again), tolerance));
        EXPECT_LT(meanDifference(seen, mOriginal), 0.01);
    }

    std::string mPath;
    Samples mOriginal;
};

} // namespace

TEST_P(SaveTest, SavesByPath) {
    const Component component = getComponent(mOriginal);
    ASSERT_EQ(component->save(GetParam().format, mPath.c_str(), GetParam().flags), tov::SUCCESS);
    expectPixels();
}

TEST_P(SaveTest, SavesToAFileStream) {
    const Component component = getComponent(mOriginal);
    const auto stream = qutil::FileOutputStream::create(mPath);
    ASSERT_TRUE(stream);
    ASSERT_EQ(component->saveToStream(stream.get(), GetParam().format, GetParam().flags), tov::SUCCESS);
    ASSERT_EQ(stream->close(), tov::SUCCESS);
    expectPixels();
}

TEST_P(SaveTest, SavesToAMemoryStream) {
    const Component component = getComponent(mOriginal);
    const auto stream = qutil::MemoryOutputStream::create();
    ASSERT_EQ(component->saveToStream(stream.get(), GetParam().format, GetParam().flags), tov::SUCCESS);
    writeFile(mPath, std::string(stream->bytes().begin(), stream->bytes().end()));
    expectPixels();
}

using enum Depth;
using enum Fidelity;

INSTANTIATE_TEST_SUITE_P(Png, SaveTest,
                         ::testing::Values(SaveCase{"Grey", "a.png", FIF_PNG, 0, 1, BYTE},
                                           SaveCase{"Rgb", "a.png", FIF_PNG, 0, 3, BYTE},
                                           SaveCase{"RgbStored", "a.png", FIF_PNG, PNG_Z_NO_COMPRESSION, 3, BYTE},
                                           SaveCase{"RgbInterlaced", "a.png", FIF_PNG, PNG_INTERLACED, 3, BYTE},
                                           SaveCase{"Rgba", "a.png", FIF_PNG, 0, 4, BYTE},
                                           SaveCase{"Grey16", "a.png", FIF_PNG, 0, 1, WORD},
                                           SaveCase{"Rgb16", "a.png", FIF_PNG, 0, 3, WORD},
                                           SaveCase{"Rgba16", "a.png", FIF_PNG, 0, 4, WORD}),
                         CaseName());

INSTANTIATE_TEST_SUITE_P(
    Jpeg, SaveTest,
    ::testing::Values(SaveCase{"Grey", "a.jpg", FIF_JPEG, JPEG_QUALITYSUPERB, 1, BYTE, LOSSY},
                      SaveCase{"Rgb", "a.jpg", FIF_JPEG, JPEG_QUALITYSUPERB | JPEG_SUBSAMPLING_444, 3, BYTE, LOSSY},
                      SaveCase{"RgbDefault", "a.jpg", FIF_JPEG, 0, 3, BYTE, LOSSY},
                      SaveCase{"Progressive", "a.jpg", FIF_JPEG, JPEG_PROGRESSIVE, 3, BYTE, LOSSY}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(Tiff, SaveTest,
                         ::testing::Values(SaveCase{"Grey", "a.tif", FIF_TIFF, 0, 1, BYTE},
                                           SaveCase{"Rgb", "a.tif", FIF_TIFF, 0, 3, BYTE},
                                           SaveCase{"RgbLzw", "a.tif", FIF_TIFF, TIFF_LZW, 3, BYTE},
                                           SaveCase{"RgbUncompressed", "a.tif", FIF_TIFF, TIFF_NONE, 3, BYTE},
                                           SaveCase{"RgbDeflate", "a.tif", FIF_TIFF, TIFF_DEFLATE, 3, BYTE},
                                           SaveCase{"Rgba", "a.tif", FIF_TIFF, 0, 4, BYTE},
                                           SaveCase{"Grey16", "a.tif", FIF_TIFF, 0, 1, WORD},
                                           SaveCase{"Rgb16", "a.tif", FIF_TIFF, 0, 3, WORD},
                                           SaveCase{"GreyFloat", "a.tif", FIF_TIFF, 0, 1, FLOAT},
                                           SaveCase{"RgbFloat", "a.tif", FIF_TIFF, 0, 3, FLOAT},
                                           SaveCase{"RgbaFloat", "a.tif", FIF_TIFF, 0, 4, FLOAT}),
                         CaseName());

INSTANTIATE_TEST_SUITE_P(Bmp, SaveTest,
                         ::testing::Values(SaveCase{"Grey", "a.bmp", FIF_BMP, 0, 1, BYTE},
                                           SaveCase{"Rgb", "a.bmp", FIF_BMP, 0, 3, BYTE}),
                         CaseName());

INSTANTIATE_TEST_SUITE_P(Tga, SaveTest,
                         ::testing::Values(SaveCase{"Grey", "a.tga", FIF_TARGA, 0, 1, BYTE},
                                           SaveCase{"Rgb", "a.tga", FIF_TARGA, 0, 3, BYTE},
                                           SaveCase{"RgbRunLengths", "a.tga", FIF_TARGA, TARGA_SAVE_RLE, 3, BYTE},
                                           SaveCase{"Rgba", "a.tga", FIF_TARGA, 0, 4, BYTE}),
                         CaseName());

INSTANTIATE_TEST_SUITE_P(Gif, SaveTest, ::testing::Values(SaveCase{"Grey", "a.gif", FIF_GIF, 0, 1, BYTE}), CaseName());

INSTANTIATE_TEST_SUITE_P(HighDynamicRange, SaveTest,
                         ::testing::Values(SaveCase{"ExrGrey", "a.exr", FIF_EXR, 0, 1, FLOAT},
                                           SaveCase{"ExrRgb", "a.exr", FIF_EXR, 0, 3, FLOAT},
                                           SaveCase{"ExrRgbFloats", "a.exr", FIF_EXR, EXR_FLOAT | EXR_NONE, 3, FLOAT},
                                           SaveCase{"ExrRgba", "a.exr", FIF_EXR, EXR_ZIP, 4, FLOAT},
                                           SaveCase{"Radiance", "a.hdr", FIF_HDR, 0, 3, FLOAT, LOSSY},
                                           SaveCase{"PfmGrey", "a.pfm", FIF_PFM, 0, 1, FLOAT, EXACT, PFM_UPSIDE_DOWN},
                                           SaveCase{"PfmRgb", "a.pfm", FIF_PFM, 0, 3, FLOAT, EXACT, PFM_UPSIDE_DOWN}),
                         CaseName());

INSTANTIATE_TEST_SUITE_P(Webp, SaveTest,
                         ::testing::Values(SaveCase{"Lossless", "a.webp", FIF_WEBP, WEBP_LOSSLESS, 3, BYTE},
                                           SaveCase{"LosslessRgba", "a.webp", FIF_WEBP, WEBP_LOSSLESS, 4, BYTE},
                                           SaveCase{"Lossy", "a.webp", FIF_WEBP, 0, 3, BYTE, LOSSY}),
                         CaseName());

namespace {

struct Target {
    const char* file;
    FREE_IMAGE_FORMAT format;
};

constexpr Target INDEXED_FORMATS[] = {
    {"out.png", FIF_PNG}, {"out.tif", FIF_TIFF}, {"out.bmp", FIF_BMP}, {"out.gif", FIF_GIF}};

class SaveIndexedTest : public FileTest {
protected:
    /// Saves a loaded palette picture in each format, and expects the other program to see its colours.
    void expectColoursKept(Content content, int bitsPerPixel, const std::vector<std::string>& options) const {
        const Samples picture = paint(content, 3, Depth::BYTE);
        writeWithMagick(picture, "BMP3:" + at("source.bmp"), options);
        const Component component = makeComponent();
        ASSERT_EQ(component->load(DETECT, at("source.bmp").c_str(), 0), tov::SUCCESS);
        int depth = 0;
        component->getBitsPerPixel(&depth);
        ASSERT_EQ(depth, bitsPerPixel);
        for (const Target& target : INDEXED_FORMATS) {
            SCOPED_TRACE(target.file);
            ASSERT_EQ(component->save(target.format, at(target.file).c_str(), 0), tov::SUCCESS);
            EXPECT_TRUE(isSame(readWithMagick(at(target.file), 3, BYTE), picture));
        }
    }
};

} // namespace

TEST_F(SaveIndexedTest, OneBitPicturesKeepTheirColours) {
    expectColoursKept(Content::TWO_LEVELS, 1, {"-type", "bilevel"});
}

TEST_F(SaveIndexedTest, FourBitPicturesKeepTheirColours) {
    expectColoursKept(Content::FEW_COLOURS, 4, {"+dither", "-colors", "16"});
}

TEST_F(SaveIndexedTest, EightBitPicturesKeepTheirColours) {
    expectColoursKept(Content::MANY_COLOURS, 8, {"+dither", "-type", "Palette", "-compress", "None"});
}

using SaveFormatTest = FileTest;

TEST_F(SaveFormatTest, RefusesWhatAFormatCannotHold) {
    const Component floats = getComponent(paint(Content::MOTLEY, 3, FLOAT));
    const Component bytes = getComponent(paint(Content::MOTLEY, 4, BYTE));
    const auto stream = qutil::MemoryOutputStream::create();
    EXPECT_EQ(floats->save(FIF_PNG, at("a.png").c_str(), 0), tov::NOT_SUPPORTED);
    EXPECT_EQ(floats->saveToStream(stream.get(), FIF_JPEG, 0), tov::NOT_SUPPORTED);
    EXPECT_EQ(bytes->save(FIF_GIF, at("a.gif").c_str(), 0), tov::NOT_SUPPORTED);
    EXPECT_EQ(bytes->saveToStream(stream.get(), FIF_EXR, 0), tov::NOT_SUPPORTED);
    EXPECT_EQ(bytes->save(DETECT, at("a.png").c_str(), 0), tov::NOT_SUPPORTED);
    EXPECT_TRUE(files().empty());
    EXPECT_TRUE(stream->bytes().empty());
}

TEST_F(SaveFormatTest, WhatTheEncoderRefusesIsAFailure) {
    // The library promises 32 bits for its CMYK pictures, and finds out later that this is none.
    const Component component = getComponent(paint(Content::MOTLEY, 4, BYTE));
    const auto stream = qutil::MemoryOutputStream::create();
    EXPECT_EQ(component->save(FIF_JPEG, at("a.jpg").c_str(), 0), tov::FAILURE);
    EXPECT_EQ(component->saveToStream(stream.get(), FIF_JPEG, 0), tov::FAILURE);
    EXPECT_TRUE(stream->bytes().empty());
    EXPECT_FALSE(isEmpty(*component));
}

TEST_F(SaveFormatTest, TheFormatDecidesNotTheName) {
    const Samples picture = paint(Content::MOTLEY, 3, BYTE);
    const Component component = getComponent(picture);
    ASSERT_EQ(component->save(FIF_PNG, at("picture.jpg").c_str(), 0), tov::SUCCESS);
    EXPECT_TRUE(isSame(readWithMagick("PNG:" + at("picture.jpg"), 3, BYTE), picture));
}

TEST_F(SaveFormatTest, SavingOverAFileReplacesIt) {
    const Samples picture = paint(Content::MOTLEY, 3, BYTE);
    writeFile(at("a.bmp"), std::string(100000, 'x'));
    ASSERT_EQ(getComponent(picture)->save(FIF_BMP, at("a.bmp").c_str(), 0), tov::SUCCESS);
    EXPECT_LT(readFile(at("a.bmp")).size(), 10000U);
    EXPECT_TRUE(isSame(readWithMagick(at("a.bmp"), 3, BYTE), picture));
}

} // namespace zqx::img::test
