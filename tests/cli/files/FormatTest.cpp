// apply: what becomes of every kind of picture and of every file format.
#include <cmath>
#include <cstring>

#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace {

using FormatTest = ProgramTest;

constexpr unsigned WIDTH = 29;
constexpr unsigned HEIGHT = 14;

Rgba getGrey(unsigned value) {
    const int v = static_cast<int>(value);
    return {v, v, v};
}

unsigned scattered(unsigned x, unsigned y) {
    return x * 7 + y * 13;
}

Bitmap greyPicture() {
    return paintIndexed(WIDTH, HEIGHT, 8, getGrey, [](unsigned x, unsigned y) { return scattered(x, y) % 256; });
}

/// A picture of each working form, and the formats that hold it without loss.
struct Lossless {
    const char* form;
    const char* extension;
    int saveFlags = 0;
};

std::ostream& operator<<(std::ostream& stream, const Lossless& lossless) {
    return stream << lossless.form << ' ' << lossless.extension;
}

Bitmap getPicture(const std::string& form) {
    if (form == "grey") {
        return greyPicture();
    }
    if (form == "rgb" || form == "rgba") {
        return paint(WIDTH, HEIGHT, form == "rgb" ? 24 : 32, motley);
    }
    if (form == "floatGrey") {
        return fillSamples(FIT_FLOAT, 32, WIDTH, HEIGHT);
    }
    return form == "floatRgb" ? fillSamples(FIT_RGBF, 96, WIDTH, HEIGHT) : fillSamples(FIT_RGBAF, 128, WIDTH, HEIGHT);
}

class LosslessTest : public ProgramTest, public ::testing::WithParamInterface<Lossless> {};

} // namespace

TEST_P(LosslessTest, DefaultDocumentKeepsEveryPixel) {
    const auto& [form, extension, saveFlags] = GetParam();
    succeed({"params", "-o", at("default.json")});
    const std::string in = at(std::string("in.") + extension);
    const std::string out = at(std::string("out.") + extension);
    writePicture(in, getPicture(form), saveFlags);
    succeed({"apply", in, "-o", out, "--params", at("default.json")});
    EXPECT_TRUE(isIdentical(readPicture(in), readPicture(out)));
}

TEST_P(LosslessTest, FlipAloneKeepsEveryPixelOfItsRow) {
    const auto& [form, extension, saveFlags] = GetParam();
    const std::string in = at(std::string("in.") + extension);
    const std::string out = at(std::string("out.") + extension);
    writePicture(in, getPicture(form), saveFlags);
    succeed({"apply", in, "-o", out, "--set", "flipY=true"});
    const Bitmap expected = readPicture(in);
    FreeImage_FlipVertical(expected.get());
    EXPECT_TRUE(isIdentical(expected, readPicture(out)));
}

INSTANTIATE_TEST_SUITE_P(EachForm, LosslessTest,
                         ::testing::Values(Lossless{"grey", "png"}, Lossless{"grey", "bmp"}, Lossless{"grey", "tif"},
                                           Lossless{"grey", "tga"}, Lossless{"grey", "gif"}, Lossless{"grey", "pgm"},
                                           Lossless{"rgb", "png"}, Lossless{"rgb", "bmp"}, Lossless{"rgb", "tif"},
                                           Lossless{"rgb", "tga"}, Lossless{"rgb", "psd"}, Lossless{"rgb", "ppm"},
                                           Lossless{"rgb", "xpm"}, Lossless{"rgba", "png"}, Lossless{"rgba", "tif"},
                                           Lossless{"rgba", "tga"}, Lossless{"rgba", "psd"},
                                           Lossless{"floatGrey", "tif"}, Lossless{"floatGrey", "pfm"},
                                           Lossless{"floatGrey", "exr", EXR_FLOAT}, Lossless{"floatRgb", "tif"},
                                           Lossless{"floatRgb", "pfm"}, Lossless{"floatRgb", "hdr"},
                                           Lossless{"floatRgb", "exr", EXR_FLOAT}, Lossless{"floatRgba", "tif"},
                                           Lossless{"floatRgba", "exr", EXR_FLOAT}),
                         [](const auto& test) { return std::string(test.param.form) + "_" + test.param.extension; });

TEST_F(FormatTest, OneBitPictureBecomesGrey) {
    for (const bool minIsWhite : {false, true}) {
        const auto palette = [=](unsigned i) { return getGrey((i != 0) != minIsWhite ? 255 : 0); };
        const Bitmap source =
            paintIndexed(WIDTH, HEIGHT, 1, palette, [](unsigned x, unsigned y) { return scattered(x, y) % 2; });
        writePicture(at("in.png"), source);
        succeed({"apply", at("in.png"), "-o", at("out.png")});
        const Bitmap out = readPicture(at("out.png"));
        ASSERT_EQ(FreeImage_GetColorType(out.get()), FIC_MINISBLACK);
        for (unsigned x = 0; x < WIDTH; ++x) {
            ASSERT_EQ(pixelAt(out, x, 3), palette(scattered(x, 3) % 2)) << x << (minIsWhite ? " min is white" : "");
        }
    }
}

TEST_F(FormatTest, GreyPalettesOfAnyOrderBecomeGrey) {
    for (const int bits : {4, 8}) {
        const unsigned colors = 1U << bits;
        const auto palette = [=](unsigned i) { return getGrey(255 - i * 255 / (colors - 1)); };
        const auto index = [=](unsigned x, unsigned y) { return scattered(x, y) % colors; };
        writePicture(at("in.bmp"), paintIndexed(WIDTH, HEIGHT, bits, palette, index));
        succeed({"apply", at("in.bmp"), "-o", at("out.png")});
        const Bitmap out = readPicture(at("out.png"));
        ASSERT_EQ(FreeImage_GetColorType(out.get()), FIC_MINISBLACK);
        for (unsigned x = 0; x < WIDTH; ++x) {
            ASSERT_EQ(pixelAt(out, x, 5), palette(index(x, 5))) << bits << " bits, " << x;
        }
    }
}

TEST_F(FormatTest, ColorPalettesBecomeColor) {
    for (const int bits : {1, 4, 8}) {
        const unsigned colors = 1U << bits;
        const auto palette = [](unsigned i) { return Rgba{static_cast<int>(i * 9 % 256), 200, static_cast<int>(i)}; };
        const auto index = [=](unsigned x, unsigned y) { return scattered(x, y) % colors; };
        writePicture(at("in.png"), paintIndexed(WIDTH, HEIGHT, bits, palette, index));
        succeed({"apply", at("in.png"), "-o", at("out.png")});
        const Bitmap out = readPicture(at("out.png"));
        ASSERT_EQ(FreeImage_GetBPP(out.get()), 24U) << bits;
        for (unsigned x = 0; x < WIDTH; ++x) {
            ASSERT_EQ(pixelAt(out, x, 5), palette(index(x, 5))) << bits << " bits, " << x;
        }
    }
}

TEST_F(FormatTest, PaletteWithTransparencyBecomesColorWithAlpha) {
    const auto palette = [](unsigned i) { return Rgba{static_cast<int>(i), 10, 20}; };
    const auto index = [](unsigned x, unsigned y) { return scattered(x, y) % 4; };
    const Bitmap source = paintIndexed(WIDTH, HEIGHT, 8, palette, index);
    BYTE alpha[] = {0, 80, 160, 255};
    FreeImage_SetTransparencyTable(source.get(), alpha, 4);
    writePicture(at("in.png"), source);
    succeed({"apply", at("in.png"), "-o", at("out.png")});
    const Bitmap out = readPicture(at("out.png"));
    ASSERT_EQ(FreeImage_GetBPP(out.get()), 32U);
    for (unsigned x = 0; x < WIDTH; ++x) {
        const unsigned i = index(x, 2);
        ASSERT_EQ(pixelAt(out, x, 2), (Rgba{static_cast<int>(i), 10, 20, alpha[i]})) << x;
    }
}

TEST_F(FormatTest, HighColorBitmapBecomesTrueColor) {
    for (const bool with565 : {false, true}) {
        const Bitmap color = paint(WIDTH, HEIGHT, 24, motley);
        const Bitmap source(with565 ? FreeImage_ConvertTo16Bits565(color.get())
                                    : FreeImage_ConvertTo16Bits555(color.get()));
        writePicture(at("in.bmp"), source);
        succeed({"apply", at("in.bmp"), "-o", at("out.png")});
        EXPECT_TRUE(isIdentical(readPicture(at("out.png")), Bitmap(FreeImage_ConvertTo24Bits(source.get()))));
    }
}

TEST_F(FormatTest, DoublesBecomeFloats) {
    const Bitmap source(FreeImage_AllocateT(FIT_DOUBLE, 3, 1, 64));
    double* values = reinterpret_cast<double*>(FreeImage_GetBits(source.get()));
    values[0] = 0.1;
    values[1] = -2.5;
    values[2] = 100.0;
    writePicture(at("in.tif"), source);
    succeed({"apply", at("in.tif"), "-o", at("out.pfm")});
    const Bitmap out = readPicture(at("out.pfm"));
    ASSERT_EQ(FreeImage_GetImageType(out.get()), FIT_FLOAT);
    for (unsigned x = 0; x < 3; ++x) {
        EXPECT_EQ(*floatsAt(out, x, 0), static_cast<float>(values[x]));
    }
}

TEST_F(FormatTest, FloatPicturesAreLinearAndUnlimited) {
    const Bitmap source = fillSamples(FIT_RGBF, 96, WIDTH, HEIGHT);
    for (const char* extension : {"exr", "pfm", "tif"}) {
        const std::string in = at(std::string("in.") + extension);
        const std::string out = at(std::string("out.") + extension);
        writePicture(in, source, std::string(extension) == "exr" ? EXR_FLOAT : 0);
        succeed({"apply", in, "-o", out, "--set", "exposure=1"});
        const Bitmap result = readPicture(out);
        ASSERT_EQ(FreeImage_GetImageType(result.get()), FIT_RGBF) << extension;
        for (unsigned x = 0; x < WIDTH; ++x) {
            const float expected = 2.0F * floatsAt(source, x, 3)[1];
            ASSERT_NEAR(floatsAt(result, x, 3)[1], expected, 1e-6F + 1e-6F * expected) << extension;
        }
    }
}

TEST_F(FormatTest, FloatsAreEncodedForEightBitFormats) {
    const Bitmap source(FreeImage_AllocateT(FIT_RGBF, 1, 1, 96));
    *reinterpret_cast<FIRGBF*>(FreeImage_GetBits(source.get())) = {0.5F, 4.0F, -1.0F};
    writePicture(at("in.pfm"), source);
    const Outcome outcome = zqxImg({"apply", at("in.pfm"), "-o", at("out.bmp")});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_NE(outcome.err.find("8 bits per channel"), std::string::npos);
    EXPECT_EQ(pixelAt(readPicture(at("out.bmp")), 0, 0), (Rgba{186, 255, 0})); // 255 * 0.5^(1 / 2.2) = 186.08
}

TEST_F(FormatTest, BytesAreDecodedForFloatFormats) {
    writePicture(at("in.png"), paint(WIDTH, HEIGHT, 24, motley));
    for (const char* extension : {"exr", "pfm", "hdr"}) {
        const std::string out = at(std::string("out.") + extension);
        succeed({"apply", at("in.png"), "-o", out});
        const Bitmap result = readPicture(out);
        const double tolerance = std::string(extension) == "hdr" ? 0.01 : 1e-6; // shared exponent of 8 bits
        for (unsigned x = 0; x < WIDTH; ++x) {
            ASSERT_NEAR(floatsAt(result, x, 3)[0], std::pow(motley(x, 3).r / 255.0, 2.2), tolerance) << extension;
        }
    }
}

TEST_F(FormatTest, GreyGoesToFormatsThatOnlyKnowColor) {
    writePicture(at("in.png"), greyPicture());
    succeed({"apply", at("in.png"), "-o", at("out.ppm")});
    const Bitmap out = readPicture(at("out.ppm"));
    ASSERT_EQ(FreeImage_GetBPP(out.get()), 24U);
    for (unsigned x = 0; x < WIDTH; ++x) {
        const Rgba got = pixelAt(out, x, 1);
        EXPECT_EQ(got.r, got.g);
        EXPECT_NEAR(got.r, static_cast<int>(scattered(x, 1) % 256), 1);
    }
    for (const char* name : {"out.webp", "out.psd"}) {
        succeed({"apply", at("in.png"), "-o", at(name)});
        EXPECT_EQ(FreeImage_GetBPP(readPicture(at(name)).get()), 24U) << name;
    }
}

TEST_F(FormatTest, GifGetsAPaletteOfTheColors) {
    writePicture(at("in.png"), paint(40, 20, 24, [](unsigned x, unsigned y) { return quarters(x, y, 40, 20); }));
    const Outcome outcome = zqxImg({"apply", at("in.png"), "-o", at("out.gif")});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_NE(outcome.err.find("256 colours"), std::string::npos);
    const Bitmap out = readPicture(at("out.gif"));
    EXPECT_EQ(pixelAt(out, 2, 2), (Rgba{255, 0, 0}));
    EXPECT_EQ(pixelAt(out, 30, 15), (Rgba{255, 255, 255}));
}

TEST_F(FormatTest, WebpKeepsAlpha) {
    writePicture(at("in.png"), paint(16, 16, 32, [](unsigned x, unsigned y) {
                     return Rgba{200, 100, 50, x < 8 || y < 8 ? 255 : 0};
                 }));
    succeed({"apply", at("in.png"), "-o", at("out.webp")});
    const Bitmap out = readPicture(at("out.webp"));
    ASSERT_EQ(FreeImage_GetBPP(out.get()), 32U);
    EXPECT_EQ(pixelAt(out, 2, 2).a, 255);
    EXPECT_EQ(pixelAt(out, 12, 12).a, 0);
}

TEST_F(FormatTest, ExrWritesWholeFloats) {
    const Bitmap source(FreeImage_AllocateT(FIT_FLOAT, 1, 1, 32));
    *reinterpret_cast<float*>(FreeImage_GetBits(source.get())) = 0.1234567F; // no half float
    writePicture(at("in.tif"), source);
    succeed({"apply", at("in.tif"), "-o", at("out.exr")});
    EXPECT_EQ(*floatsAt(readPicture(at("out.exr")), 0, 0), 0.1234567F);
}

TEST_F(FormatTest, FormatThatHoldsNoneOfItIsRefused) {
    writePicture(at("in.png"), paint(4, 4, 24, motley));
    fail(1, {"apply", at("in.png"), "-o", at("out.pgm")}, "PGM files cannot store 8-bit colour");
    fail(1, {"apply", at("in.png"), "-o", at("out.wbmp")}, "WBMP files cannot store");
    EXPECT_EQ(files(), std::vector<std::string>{"in.png"});
}

/// A portable float map as the format defines it, little-endian, made by hand: its bottom row comes first.
std::string floatMapOfTwoRows(float top, float bottom) {
    std::string file = "Pf\n1 2\n-1.0\n";
    for (const float value : {bottom, top}) {
        char bytes[sizeof value];
        std::memcpy(bytes, &value, sizeof value);
        file.append(bytes, sizeof value);
    }
    return file;
}

TEST_F(FormatTest, NewHeadersOfBmpAreReadLikeOldOnes) {
    for (const char* kind : {"TrueColor", "Palette", "Grayscale"}) {
        for (const char* version : {"BMP3:", "BMP:"}) { // headers of 40 bytes, and of 108 or 124
            ASSERT_EQ(runCommand({"convert-im6.q16hdri", ZQX_SAMPLE, "-resize", "37x29!", "-type", kind, "-compress",
                                  "none", version + at(version == std::string("BMP:") ? "new.bmp" : "old.bmp")})
                          .exitCode,
                      0);
        }
        ASSERT_GT(readFile(at("new.bmp"))[14], 40) << kind;
        succeed({"apply", at("old.bmp"), "-o", at("old.png")});
        succeed({"apply", at("new.bmp"), "-o", at("new.png")});
        EXPECT_TRUE(isIdentical(readPicture(at("old.png")), readPicture(at("new.png")))) << kind;
    }
}

TEST_F(FormatTest, FloatMapIsReadTheRightWayUp) {
    writeFile(at("in.pfm"), floatMapOfTwoRows(1.0F, 0.0F));
    EXPECT_EQ(zqxImg({"apply", at("in.pfm"), "-o", at("out.bmp")}).exitCode, 0);
    const Bitmap out = readPicture(at("out.bmp"));
    EXPECT_EQ(pixelAt(out, 0, 0).r, 255);
    EXPECT_EQ(pixelAt(out, 0, 1).r, 0);
}

TEST_F(FormatTest, FloatMapIsWrittenTheRightWayUp) {
    writePicture(at("in.png"), paintIndexed(1, 2, 8, getGrey, [](unsigned, unsigned y) { return y == 0 ? 255U : 0U; }));
    EXPECT_EQ(zqxImg({"apply", at("in.png"), "-o", at("out.pfm")}).exitCode, 0);
    const std::string file = readFile(at("out.pfm"));
    const std::string wanted = floatMapOfTwoRows(1.0F, 0.0F);
    ASSERT_GE(file.size(), 8U);
    EXPECT_EQ(file.substr(file.size() - 8), wanted.substr(wanted.size() - 8));
}

} // namespace zqx::img::test
