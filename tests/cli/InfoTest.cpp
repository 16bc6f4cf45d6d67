// info: what it tells of pictures.
#include "Pictures.h"
#include "Program.h"

namespace zqx::img::test {

namespace {

using InfoTest = ProgramTest;

/// The value behind a label, or what was said instead.
std::string valueOf(const Outcome& outcome, const std::string& label) {
    const std::size_t place = ("\n" + outcome.out).find("\n" + label + " ");
    if (outcome.exitCode != 0 || place == std::string::npos) {
        return "nothing in: " + outcome.out + outcome.err;
    }
    const std::size_t start = outcome.out.find_first_not_of(' ', place + label.size());
    return outcome.out.substr(start, outcome.out.find('\n', start) - start);
}

} // namespace

TEST_F(InfoTest, TellsOfTheSample) {
    const Outcome outcome = ProgramTest::zqxImg({"info", ZQX_SAMPLE});
    EXPECT_EQ(valueOf(outcome, "file"), ZQX_SAMPLE);
    EXPECT_EQ(valueOf(outcome, "format"), "PNG (Portable Network Graphics)");
    EXPECT_EQ(valueOf(outcome, "size"), "600 x 400");
    EXPECT_EQ(valueOf(outcome, "bits per pixel"), "24");
    EXPECT_EQ(valueOf(outcome, "colour"), "RGB");
    EXPECT_EQ(valueOf(outcome, "transparency"), "no");
}

TEST_F(InfoTest, TellsOfFloats) {
    writePicture(at("in.exr"), fillSamples(FIT_RGBAF, 128, 7, 5), EXR_FLOAT);
    const Outcome outcome = zqxImg({"info", at("in.exr")});
    EXPECT_EQ(valueOf(outcome, "size"), "7 x 5");
    EXPECT_EQ(valueOf(outcome, "bits per pixel"), "128");
    EXPECT_EQ(valueOf(outcome, "samples"), "32-bit float, four channels");
}

TEST_F(InfoTest, TellsTheOrientationAndTheStoredSize) {
    writeOrientedJpeg(at("in.jpg"), 40, 20, 6);
    const Outcome outcome = zqxImg({"info", at("in.jpg")});
    EXPECT_EQ(valueOf(outcome, "size"), "40 x 20");
    EXPECT_EQ(valueOf(outcome, "orientation"), "6 (to be turned by 90 degrees clockwise)");
    EXPECT_NE(valueOf(outcome, "metadata").find("Exif main"), std::string::npos);
}

TEST_F(InfoTest, TellsResolutionAndProfile) {
    const Bitmap source = paint(4, 4, 24, motley);
    FreeImage_SetDotsPerMeterX(source.get(), 11811);
    FreeImage_SetDotsPerMeterY(source.get(), 11811);
    std::vector<BYTE> profile(200, 0);
    FreeImage_CreateICCProfile(source.get(), profile.data(), 200);
    writePicture(at("in.tif"), source);
    const Outcome outcome = zqxImg({"info", at("in.tif")});
    EXPECT_EQ(valueOf(outcome, "resolution"), "11811 x 11811 dots per metre (300 x 300 dpi)");
    EXPECT_EQ(valueOf(outcome, "colour profile"), "200 bytes");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(InfoTest, ContentDecidesOverTheExtension) {
    writePicture(at("in.png"), paint(4, 4, 24, motley));
    writeFile(at("in.tif"), readFile(at("in.png")));
    EXPECT_EQ(valueOf(zqxImg({"info", at("in.tif")}), "format"), "PNG (Portable Network Graphics)");
}

TEST_F(InfoTest, FailuresAreTold) {
    fail(1, {"info", at("none.png")}, at("none.png") + ": there is no such file");
    writeFile(at("in.dat"), "no picture at all, by any means");
    fail(1, {"info", at("in.dat")}, "is not a picture in a known format");
}

} // namespace zqx::img::test
