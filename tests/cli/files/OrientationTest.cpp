// Pictures that were stored lying on a side: turned upright once, whatever the format, and never again.
#include "cli/Exiftool.h"
#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace {

constexpr unsigned WIDTH = 96;
constexpr unsigned HEIGHT = 64;

/// How the four quarters (red, green above blue, white) lie once the picture is upright, by orientation from 1.
constexpr const char* UPRIGHT[] = {"RGBW", "GRWB", "WBGR", "BWRG", "RBGW", "BRWG", "WGBR", "GWRB"};

class OrientationTest : public ProgramTest, public ::testing::WithParamInterface<const char*> {
protected:
    /// A picture that asks for a turn by its Exif.
    std::string orientedPicture(const std::string& extension, int orientation) const {
        const std::string name = at("in." + extension);
        writePicture(name,
                     paint(WIDTH, HEIGHT, 24, [](unsigned x, unsigned y) { return quarters(x, y, WIDTH, HEIGHT); }));
        writeTags(name, {"-IFD0:Orientation=" + std::to_string(orientation)});
        return name;
    }

    /// The initials of the colours in the corners: top left, top right, bottom left, bottom right.
    static std::string getCorners(const std::string& name) {
        const Bitmap bitmap = readPicture(name);
        const unsigned right = FreeImage_GetWidth(bitmap.get()) - 8;
        const unsigned bottom = FreeImage_GetHeight(bitmap.get()) - 8;
        std::string letters;
        for (const auto& [x, y] :
             {std::pair(8U, 8U), std::pair(right, 8U), std::pair(8U, bottom), std::pair(right, bottom)}) {
            const Rgba color = pixelAt(bitmap, x, y);
            const bool r = color.r > 128;
            const bool g = color.g > 128;
            const bool b = color.b > 128;
            letters += r && g && b ? 'W' : r && !g && !b ? 'R' : g && !r && !b ? 'G' : b && !r && !g ? 'B' : '?';
        }
        return letters;
    }
};

TEST_P(OrientationTest, IsAppliedOnce) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const std::string in = orientedPicture(GetParam(), orientation);
        const std::string once = at(std::string("once.") + GetParam());
        succeed({"apply", in, "-o", once});
        EXPECT_EQ(getCorners(once), UPRIGHT[orientation - 1]) << orientation;
        const std::string tag = getTag(once, "EXIF:Orientation");
        EXPECT_TRUE(tag == "1" || tag == "-") << orientation << " became " << tag;
        succeed({"apply", once, "-o", at("twice.png")});
        EXPECT_EQ(getCorners(at("twice.png")), UPRIGHT[orientation - 1]) << orientation;
    }
}

INSTANTIATE_TEST_SUITE_P(EachFormat, OrientationTest, ::testing::Values("jpg", "png", "tif", "webp", "jp2", "psd"),
                         [](const auto& test) { return std::string(test.param); });

TEST_F(OrientationTest, TurningMovesPixelsAndChangesNone) {
    const Bitmap source = paint(29, 14, 32, motley);
    writePicture(at("in.png"), source);
    writeTags(at("in.png"), {"-IFD0:Orientation=6"});
    succeed({"apply", at("in.png"), "-o", at("out.png")});
    EXPECT_TRUE(isIdentical(readPicture(at("out.png")), Bitmap(FreeImage_Rotate(source.get(), -90.0, nullptr))));
}

TEST_F(OrientationTest, FloatsAreTurnedToo) {
    const Bitmap source = fillSamples(FIT_RGBF, 96, 29, 14);
    writePicture(at("in.tif"), source);
    writeTags(at("in.tif"), {"-IFD0:Orientation=8"});
    succeed({"apply", at("in.tif"), "-o", at("out.tif")});
    EXPECT_TRUE(isIdentical(readPicture(at("out.tif")), Bitmap(FreeImage_Rotate(source.get(), 90.0, nullptr))));
}

TEST_F(OrientationTest, TiffsThatTheDecoderTurnsHalfwayAreTurnedOnce) {
    for (int orientation = 1; orientation <= 8; ++orientation) {
        const std::string plain = orientedPicture("tif", 1);
        const std::string in = at("ycbcr.tif");
        ASSERT_EQ(runCommand({"convert-im6.q16hdri", plain, "-colorspace", "YCbCr", "-compress", "jpeg", in}).exitCode,
                  0);
        writeTags(in, {"-IFD0:Orientation=" + std::to_string(orientation)});
        succeed({"apply", in, "-o", at("out.png")});
        EXPECT_EQ(getCorners(at("out.png")), UPRIGHT[orientation - 1]) << orientation;
    }
}

TEST_F(OrientationTest, BigEndianTagsAreUnderstood) {
    for (const char* extension : {"jpg", "tif"}) {
        const std::string in = at(std::string("in.") + extension);
        ASSERT_EQ(runCommand({"convert-im6.q16hdri", "-size", "40x20", "xc:red", "-depth", "8", "-define",
                              "tiff:endian=msb", in})
                      .exitCode,
                  0);
        writeTags(in, {"-ExifByteOrder=MM", "-IFD0:Orientation=8"});
        succeed({"apply", in, "-o", at("out.png")});
        EXPECT_EQ(FreeImage_GetWidth(readPicture(at("out.png")).get()), 20U) << extension;
    }
}

TEST_F(OrientationTest, XmpSaysTheSame) {
    const std::string in = orientedPicture("jpg", 6);
    writeTags(in, {"-XMP-tiff:Orientation=6"});
    succeed({"apply", in, "-o", at("out.jpg")});
    EXPECT_EQ(getTag(at("out.jpg"), "XMP-tiff:Orientation"), "1");
}

TEST_F(OrientationTest, ResolutionTurnsWithThePicture) {
    const std::string in = orientedPicture("jpg", 6);
    writeTags(in, {"-IFD0:XResolution=300", "-IFD0:YResolution=200", "-IFD0:ResolutionUnit=2"});
    succeed({"apply", in, "-o", at("out.tif")});
    EXPECT_EQ(getTags(at("out.tif"), {"IFD0:XResolution", "IFD0:YResolution"}),
              (std::vector<std::string>{"200", "300"}));
}

TEST_F(OrientationTest, SizeTagsFollowThePicture) {
    const std::string in = orientedPicture("jpg", 6);
    writeTags(in, {"-ExifIFD:ExifImageWidth=96", "-ExifIFD:ExifImageHeight=64", "-ExifIFD:SubjectArea=10 20"});
    succeed({"apply", in, "-o", at("out.jpg")});
    // A place in the picture as it was stored would now be another one.
    EXPECT_EQ(getTags(at("out.jpg"), {"ExifIFD:ExifImageWidth", "ExifIFD:ExifImageHeight", "ExifIFD:SubjectArea"}),
              (std::vector<std::string>{"64", "96", "-"}));
}

TEST_F(OrientationTest, ValuesThatDoNotExistTurnNothing) {
    const std::string in = orientedPicture("png", 1);
    writeTags(in, {"-IFD0:Orientation=9"});
    succeed({"apply", in, "-o", at("out.png")});
    EXPECT_EQ(getCorners(at("out.png")), "RGBW");
}

} // namespace

} // namespace zqx::img::test
