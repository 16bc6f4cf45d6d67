// apply: alpha is straight, whatever the files hold.
#include <algorithm>
#include <array>
#include <cmath>

#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace {

class AlphaTest : public ProgramTest {
protected:
    /// A file with one row of float pixels.
    void writeFloats(const std::string& name, const std::vector<FIRGBAF>& pixels) const {
        const Bitmap bitmap(FreeImage_AllocateT(FIT_RGBAF, static_cast<int>(pixels.size()), 1));
        std::copy(pixels.begin(), pixels.end(), reinterpret_cast<FIRGBAF*>(FreeImage_GetBits(bitmap.get())));
        writePicture(at(name), bitmap, EXR_FLOAT);
    }

    /// The four channels of a pixel of the first row of a float file.
    std::array<float, 4> floats(const std::string& name, unsigned x = 0) const {
        const Bitmap bitmap = readPicture(at(name));
        const float* pixel = floatsAt(bitmap, x, 0);
        return {pixel[0], pixel[1], pixel[2], pixel[3]};
    }

    /// The four channels of a pixel of the first row of a 16-bit file.
    std::array<int, 4> words(const std::string& name, unsigned x = 0) const {
        const Bitmap bitmap = readPicture(at(name));
        EXPECT_EQ(FreeImage_GetImageType(bitmap.get()), FIT_RGBA16);
        const WORD* pixel = reinterpret_cast<const WORD*>(FreeImage_GetScanLine(bitmap.get(), 0)) + 4 * x;
        return {pixel[0], pixel[1], pixel[2], pixel[3]};
    }
};

using Floats = std::array<float, 4>;

/// Colours that are not on any curve's end, half transparent.
const std::vector<FIRGBAF> HALF_COVERED = {{0.25F, 0.125F, 0.0625F, 0.5F}};

int encoded(double light) {
    return static_cast<int>(std::lround(65535.0 * std::pow(light, 1.0 / 2.2)));
}

} // namespace

TEST_F(AlphaTest, ExrIsDividedForFormatsWithStraightAlpha) {
    writeFloats("in.exr", HALF_COVERED);
    EXPECT_EQ(zqxImg({"apply", at("in.exr"), "-o", at("out.png")}).exitCode, 0);
    EXPECT_EQ(words("out.png"), (std::array{encoded(0.5), encoded(0.25), encoded(0.125), 32768}));
    succeed({"apply", at("in.exr"), "-o", at("out.tif")});
    EXPECT_EQ(floats("out.tif"), (Floats{0.5F, 0.25F, 0.125F, 0.5F}));
}

TEST_F(AlphaTest, StraightAlphaIsMultipliedForExr) {
    writeFloats("in.tif", HALF_COVERED);
    succeed({"apply", at("in.tif"), "-o", at("out.exr")});
    EXPECT_EQ(floats("out.exr"), (Floats{0.125F, 0.0625F, 0.03125F, 0.5F}));
}

TEST_F(AlphaTest, AnotherProgramAgreesAboutExr) {
    writePicture(at("in.png"), paint(4, 4, 32, [](unsigned, unsigned) { return Rgba{255, 128, 0, 51}; }));
    succeed({"apply", at("in.png"), "-o", at("out.exr")});
    ASSERT_EQ(runCommand({"oiiotool", at("out.exr"), "--unpremult", "--ch", "R,G,B,A", "-d", "float", "-o",
                          at("straight.tif"), "--attrib", "oiio:UnassociatedAlpha", "1"})
                  .exitCode,
              0);
    const Floats result = floats("straight.tif");
    EXPECT_NEAR(result[0], 1.0F, 1e-6F);
    EXPECT_NEAR(result[1], std::pow(128.0 / 255.0, 2.2), 1e-6);
    EXPECT_NEAR(result[3], 0.2F, 1e-6F);
}

TEST_F(AlphaTest, NeutralAndFlippedExrKeepTheirVeryNumbers) {
    const std::vector<FIRGBAF> pixels = {
        {0.1F, 0.7F, 3.3F, 0.3F}, {0.9F, 1e-9F, 7.0F, 0.7F}, {5.0F, 6.0F, 7.0F, 0.0F}, {1.1F, 0.2F, -0.4F, 1e-7F}};
    writeFloats("in.exr", pixels);
    succeed({"apply", at("in.exr"), "-o", at("out.exr")});
    EXPECT_TRUE(isIdentical(readPicture(at("in.exr")), readPicture(at("out.exr"))));
    succeed({"apply", at("in.exr"), "-o", at("out.exr"), "--set", "flipX=true"});
    for (unsigned x = 0; x < 4; ++x) {
        EXPECT_EQ(floats("out.exr", x), floats("in.exr", 3 - x)) << x;
    }
}

TEST_F(AlphaTest, AdjustmentsSeeStraightColors) {
    const double straight[] = {0.8, 0.4, 0.2};
    writeFloats("straight.tif", {{0.8F, 0.4F, 0.2F, 1.0F}});
    writeFloats("in.exr", {{0.2F, 0.1F, 0.05F, 0.25F}});
    for (const char* name : {"straight.tif", "in.exr"}) {
        succeed({"apply", at(name), "-o", at(std::string("out of ") + name), "--set", "contrast=0.7"});
    }
    const Floats opaque = floats("out of straight.tif");
    const Floats covered = floats("out of in.exr");
    EXPECT_GT(std::abs(opaque[0] - straight[0]), 0.01); // contrast is not a factor, so alpha matters
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(covered[i], 0.25F * opaque[i], 1e-6F);
    }
    EXPECT_EQ(covered[3], 0.25F);
}

TEST_F(AlphaTest, LightWithoutSurfaceStaysInExr) {
    writeFloats("in.exr", {{2.0F, 1.0F, 0.5F, 0.0F}});
    succeed({"apply", at("in.exr"), "-o", at("out.exr"), "--set", "exposure=1"});
    const Floats result = floats("out.exr");
    EXPECT_NEAR(result[0], 4.0F, 1e-5F);
    EXPECT_NEAR(result[2], 1.0F, 1e-5F);
    EXPECT_EQ(result[3], 0.0F);
}

TEST_F(AlphaTest, HiddenColorDoesNotBeginToShineInExr) {
    writePicture(at("in.png"), paint(2, 2, 32, [](unsigned, unsigned) { return Rgba{255, 200, 100, 0}; }));
    succeed({"apply", at("in.png"), "-o", at("out.exr")});
    EXPECT_EQ(floats("out.exr"), (Floats{0.0F, 0.0F, 0.0F, 0.0F}));
}

TEST_F(AlphaTest, ExrWithoutAlphaInTheTargetLooksAsInFrontOfBlack) {
    writeFloats("in.exr", HALF_COVERED);
    EXPECT_EQ(zqxImg({"apply", at("in.exr"), "-o", at("out.pfm")}).exitCode, 0);
    const Bitmap out = readPicture(at("out.pfm"));
    EXPECT_EQ(floatsAt(out, 0, 0)[0], 0.25F);
}

TEST_F(AlphaTest, EachOfTwoTargetsGetsItsKind) {
    writeFloats("in.exr", std::vector<FIRGBAF>(8, HALF_COVERED.front()));
    EXPECT_EQ(zqxImg({"apply", at("in.exr"), "-o", at("out.tif"), "--before-after", at("both.exr")}).exitCode, 0);
    EXPECT_EQ(floats("out.tif")[0], 0.5F);
    EXPECT_EQ(floats("both.exr")[0], 0.25F);
    EXPECT_EQ(floats("both.exr", 7)[0], 0.25F);
}

TEST_F(AlphaTest, TiffThatSaysSoIsDivided) {
    const auto write = [&](const std::string& name, const std::string& kind, const char* depth) {
        ASSERT_EQ(runCommand({"convert-im6.q16hdri", "-size", "3x2", "xc:rgb(40%,60%,80%)", "-alpha", "set", "-channel",
                              "A", "-evaluate", "set", "20%", "+channel", "-depth", depth, "-define",
                              "tiff:alpha=" + kind, at(name)})
                      .exitCode,
                  0);
    };
    for (const char* kind : {"associated", "unassociated"}) {
        write("in16.tif", kind, "16");
        succeed({"apply", at("in16.tif"), "-o", at("out.png")});
        const std::array<int, 4> result = words("out.png");
        EXPECT_NEAR(result[0], 26214, 3) << kind; // a fifth of it is stored, to half a code
        EXPECT_NEAR(result[1], 39321, 3) << kind;
        EXPECT_EQ(result[3], 13107) << kind;
        write("in8.tif", kind, "8");
        succeed({"apply", at("in8.tif"), "-o", at("out8.png")});
        const Rgba bytes = pixelAt(readPicture(at("out8.png")), 1, 1);
        EXPECT_NEAR(bytes.r, 102, 3) << kind;
        EXPECT_NEAR(bytes.b, 204, 3) << kind;
        EXPECT_EQ(bytes.a, 51) << kind;
    }
    EXPECT_EQ(runCommand({"oiiotool", "--create", "3x2", "4", "--fill:color=0.2,0.3,0.4,0.5", "3x2", "-d", "float",
                          "-o", at("in.tif")})
                  .exitCode,
              0);
    succeed({"apply", at("in.tif"), "-o", at("out.tif")});
    EXPECT_NEAR(floats("out.tif")[0], 0.4F, 1e-6F);
    succeed({"apply", at("in.tif"), "-o", at("out.exr"), "--strip", "all"});
    EXPECT_EQ(floats("out.exr")[0], 0.2F);
}

} // namespace zqx::img::test
