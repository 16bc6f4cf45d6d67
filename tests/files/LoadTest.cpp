// Files written by another program, loaded by path and by stream.
#include "FileTest.h"

namespace zqx::img::test {

/// What the loaded pixels are compared with.
enum class Against {
    THE_ORIGINAL,     ///< lossless files
    THE_OTHER_PROGRAM ///< lossy files: both programs decode the same codes
};

struct LoadCase {
    const char* name;
    const char* file;
    Content content;
    int channels;
    Depth depth;
    std::vector<std::string> options;
    FREE_IMAGE_TYPE type;
    int bitsPerPixel;
    int flags = 0;
    Against against = Against::THE_ORIGINAL;
    bool upsideDown = false;
};

namespace {

/// The other program computes in floats with 1.0 at 65535, which may cost the last bit.
double toleranceFor(Depth depth) {
    return depth == Depth::FLOAT ? 4e-7 : 0.0;
}

class LoadTest : public FileTest, public ::testing::WithParamInterface<LoadCase> {
protected:
    LoadTest() : mPath(at(GetParam().file)) {
        // A prefix "PNG8:" and the like is given with the options' first word.
        std::vector<std::string> options = GetParam().options;
        std::string prefix;
        if (!options.empty() && options.front().back() == ':') {
            prefix = options.front();
            options.erase(options.begin());
        }
        writeWithMagick(paint(GetParam().content, GetParam().channels, GetParam().depth), prefix + mPath, options);
    }

    void expectPixels(IFreeImage& component) const {
        const LoadCase& file = GetParam();
        int type = 0;
        int bitsPerPixel = 0;
        component.getDataType(&type);
        component.getBitsPerPixel(&bitsPerPixel);
        EXPECT_EQ(type, file.type);
        EXPECT_EQ(bitsPerPixel, file.bitsPerPixel);
        const Samples loaded = file.upsideDown ? flipped(getSamples(component)) : getSamples(component);
        if (file.against == Against::THE_ORIGINAL) {
            const Samples original = paint(file.content, file.channels, file.depth);
            EXPECT_TRUE(
                isSame(loaded, file.depth == Depth::BYTE ? inColour(original) : original, toleranceFor(file.depth)));
        } else {
            EXPECT_TRUE(
                isSame(loaded, readWithMagick(mPath, loaded.channels, loaded.depth), toleranceFor(loaded.depth)));
        }
    }

    std::string mPath;
};

} // namespace

TEST_P(LoadTest, LoadsByPath) {
    const Component component = makeComponent();
    ASSERT_EQ(component->load(DETECT, mPath.c_str(), GetParam().flags), tov::SUCCESS);
    expectPixels(*component);
}

TEST_P(LoadTest, LoadsFromAFileStream) {
    const Component component = makeComponent();
    const auto stream = qutil::FileInputStream::create(mPath);
    ASSERT_TRUE(stream);
    ASSERT_EQ(component->loadFromStream(DETECT, stream.get(), GetParam().flags), tov::SUCCESS);
    expectPixels(*component);
}

TEST_P(LoadTest, LoadsFromAMemoryStream) {
    const Component component = makeComponent();
    const auto stream = memoryStream(readFile(mPath));
    ASSERT_EQ(component->loadFromStream(DETECT, stream.get(), GetParam().flags), tov::SUCCESS);
    expectPixels(*component);
}

using enum Content;
using enum Depth;
using enum Against;

INSTANTIATE_TEST_SUITE_P(
    Png, LoadTest,
    ::testing::Values(LoadCase{"OneBit", "a.png", TWO_LEVELS, 3, BYTE, {"-type", "bilevel"}, FIT_BITMAP, 1},
                      LoadCase{"Palette", "a.png", MANY_COLOURS, 3, BYTE, {"PNG8:"}, FIT_BITMAP, 8},
                      LoadCase{"Grey", "a.png", MOTLEY, 1, BYTE, {}, FIT_BITMAP, 8},
                      LoadCase{"Rgb", "a.png", MOTLEY, 3, BYTE, {"PNG24:"}, FIT_BITMAP, 24},
                      LoadCase{"Rgba", "a.png", MOTLEY, 4, BYTE, {"PNG32:"}, FIT_BITMAP, 32},
                      LoadCase{
                          "RgbaInterlaced", "a.png", MOTLEY, 4, BYTE, {"PNG32:", "-interlace", "PNG"}, FIT_BITMAP, 32},
                      LoadCase{"Grey16", "a.png", MOTLEY, 1, WORD, {}, FIT_UINT16, 16},
                      LoadCase{"Rgb16", "a.png", MOTLEY, 3, WORD, {"PNG48:"}, FIT_RGB16, 48},
                      LoadCase{"Rgba16", "a.png", MOTLEY, 4, WORD, {"PNG64:"}, FIT_RGBA16, 64}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(
    Jpeg, LoadTest,
    ::testing::Values(LoadCase{"Grey", "a.jpg", MOTLEY, 1, BYTE, {}, FIT_BITMAP, 8, JPEG_ACCURATE, THE_OTHER_PROGRAM},
                      LoadCase{"Rgb", "a.jpg", MOTLEY, 3, BYTE, {}, FIT_BITMAP, 24, JPEG_ACCURATE, THE_OTHER_PROGRAM},
                      LoadCase{"Progressive",
                               "a.jpeg",
                               SMOOTH,
                               3,
                               BYTE,
                               {"-interlace", "JPEG", "-sampling-factor", "2x2"},
                               FIT_BITMAP,
                               24,
                               JPEG_ACCURATE,
                               THE_OTHER_PROGRAM}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(
    Tiff, LoadTest,
    ::testing::Values(
        LoadCase{"OneBitWhiteIsZero",
                 "a.tif",
                 TWO_LEVELS,
                 3,
                 BYTE,
                 {"-type", "bilevel", "-depth", "1", "-define", "quantum:polarity=min-is-white"},
                 FIT_BITMAP,
                 1},
        LoadCase{"FourBitPalette", "a.tif", FEW_COLOURS, 3, BYTE, {"+dither", "-colors", "16"}, FIT_BITMAP, 4},
        LoadCase{"Grey", "a.tif", MOTLEY, 1, BYTE, {}, FIT_BITMAP, 8},
        LoadCase{"Rgb", "a.tif", MOTLEY, 3, BYTE, {}, FIT_BITMAP, 24},
        LoadCase{"RgbLzw", "a.tiff", MOTLEY, 3, BYTE, {"-compress", "LZW"}, FIT_BITMAP, 24},
        LoadCase{"RgbBigEndian", "a.tif", MOTLEY, 3, BYTE, {"-endian", "MSB"}, FIT_BITMAP, 24},
        LoadCase{"Rgba", "a.tif", MOTLEY, 4, BYTE, {"-define", "tiff:alpha=unassociated"}, FIT_BITMAP, 32},
        LoadCase{"Grey16", "a.tif", MOTLEY, 1, WORD, {}, FIT_UINT16, 16},
        LoadCase{"Rgb16", "a.tif", MOTLEY, 3, WORD, {}, FIT_RGB16, 48},
        LoadCase{"GreyFloat", "a.tif", MOTLEY, 1, FLOAT, {"-compress", "LZW"}, FIT_FLOAT, 32},
        LoadCase{"RgbFloat", "a.tif", MOTLEY, 3, FLOAT, {"-compress", "LZW"}, FIT_RGBF, 96}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(
    Bmp, LoadTest,
    ::testing::Values(
        LoadCase{"FourBitPalette", "a.bmp", FEW_COLOURS, 3, BYTE, {"BMP3:", "+dither", "-colors", "16"}, FIT_BITMAP, 4},
        LoadCase{"OneBit", "a.bmp", TWO_LEVELS, 3, BYTE, {"BMP3:", "-type", "bilevel"}, FIT_BITMAP, 1},
        LoadCase{"Palette",
                 "a.bmp",
                 MANY_COLOURS,
                 3,
                 BYTE,
                 {"BMP3:", "+dither", "-type", "Palette", "-compress", "None"},
                 FIT_BITMAP,
                 8},
        LoadCase{"Rgb", "a.bmp", MOTLEY, 3, BYTE, {"BMP3:"}, FIT_BITMAP, 24}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(
    Tga, LoadTest,
    ::testing::Values(
        LoadCase{"RgbFromTheTop", "a.tga", MOTLEY, 3, BYTE, {"-orient", "TopLeft"}, FIT_BITMAP, 24},
        LoadCase{"RgbFromTheBottom", "a.tga", MOTLEY, 3, BYTE, {"-flip", "-orient", "BottomLeft"}, FIT_BITMAP, 24},
        LoadCase{"RgbRunLengths",
                 "a.tga",
                 FEW_COLOURS,
                 3,
                 BYTE,
                 {"-type", "TrueColor", "-orient", "TopLeft", "-compress", "RLE"},
                 FIT_BITMAP,
                 24},
        LoadCase{"Rgba", "a.tga", MOTLEY, 4, BYTE, {"-orient", "TopLeft"}, FIT_BITMAP, 32}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(
    Gif, LoadTest,
    ::testing::Values(
        LoadCase{"Palette", "a.gif", MANY_COLOURS, 3, BYTE, {"+dither"}, FIT_BITMAP, 8},
        LoadCase{"Interlaced", "a.gif", MANY_COLOURS, 3, BYTE, {"+dither", "-interlace", "GIF"}, FIT_BITMAP, 8}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(
    HighDynamicRange, LoadTest,
    ::testing::Values(LoadCase{"ExrRgb", "a.exr", MOTLEY, 3, FLOAT, {}, FIT_RGBF, 96},
                      LoadCase{"ExrRgba", "a.exr", MOTLEY, 4, FLOAT, {}, FIT_RGBAF, 128},
                      LoadCase{"ExrWavelets", "a.exr", MOTLEY, 3, FLOAT, {"-compress", "Piz"}, FIT_RGBF, 96},
                      LoadCase{"Radiance", "a.hdr", MOTLEY, 3, FLOAT, {}, FIT_RGBF, 96, 0, THE_OTHER_PROGRAM},
                      LoadCase{"PfmRgb", "a.pfm", MOTLEY, 3, FLOAT, {}, FIT_RGBF, 96, 0, THE_ORIGINAL, PFM_UPSIDE_DOWN},
                      LoadCase{
                          "PfmGrey", "a.pfm", MOTLEY, 1, FLOAT, {}, FIT_FLOAT, 32, 0, THE_ORIGINAL, PFM_UPSIDE_DOWN}),
    CaseName());

INSTANTIATE_TEST_SUITE_P(
    Webp, LoadTest,
    ::testing::Values(
        LoadCase{"Lossless", "a.webp", MOTLEY, 3, BYTE, {"-define", "webp:lossless=true"}, FIT_BITMAP, 24},
        LoadCase{"LosslessRgba", "a.webp", MOTLEY, 4, BYTE, {"-define", "webp:lossless=true"}, FIT_BITMAP, 32},
        LoadCase{"Lossy", "a.webp", SMOOTH, 3, BYTE, {}, FIT_BITMAP, 24, 0, THE_OTHER_PROGRAM}),
    CaseName());

using NamedFileTest = FileTest;

TEST_F(NamedFileTest, ContentDecidesOverAWrongName) {
    const Samples picture = paint(SMOOTH, 3, BYTE);
    writeWithMagick(picture, "PNG24:" + at("photo.jpg"));
    writeWithMagick(picture, "JPEG:" + at("drawing.png"));
    const Component component = makeComponent();
    ASSERT_EQ(component->load(DETECT, at("photo.jpg").c_str(), 0), tov::SUCCESS);
    EXPECT_TRUE(isSame(getSamples(*component), picture));
    ASSERT_EQ(component->load(DETECT, at("drawing.png").c_str(), JPEG_ACCURATE), tov::SUCCESS);
    EXPECT_TRUE(isSame(getSamples(*component), readWithMagick("JPEG:" + at("drawing.png"), 3, BYTE)));
}

TEST_F(NamedFileTest, ContentDecidesWithoutAnEnding) {
    samplePng("picture");
    const Component component = makeComponent();
    ASSERT_EQ(component->load(DETECT, at("picture").c_str(), 0), tov::SUCCESS);
    EXPECT_TRUE(isSame(getSamples(*component), paint(MOTLEY, 3, BYTE)));
}

TEST_F(NamedFileTest, NameDecidesWhereContentDoesNot) {
    // Targa's signature is a footer, which older files lack.
    writeWithMagick(paint(MOTLEY, 3, BYTE), "TGA:" + at("picture.tga"), {"-orient", "TopLeft"});
    std::string content = readFile(at("picture.tga"));
    if (content.size() > 26 && content.substr(content.size() - 18, 10) == "TRUEVISION") {
        content.resize(content.size() - 26); // the newer revision's footer
    }
    writeFile(at("picture.tga"), content);
    const Component component = makeComponent();
    ASSERT_EQ(component->load(DETECT, at("picture.tga").c_str(), 0), tov::SUCCESS);
    EXPECT_TRUE(isSame(getSamples(*component), paint(MOTLEY, 3, BYTE)));
}

TEST_F(NamedFileTest, AGivenFormatIsNotDetectedOver) {
    samplePng();
    const Component component = makeComponent();
    EXPECT_EQ(component->load(FIF_BMP, at("sample.png").c_str(), 0), tov::FAILURE);
    EXPECT_TRUE(isEmpty(*component));
    EXPECT_EQ(component->load(FIF_PNG, at("sample.png").c_str(), 0), tov::SUCCESS);
}

} // namespace zqx::img::test
