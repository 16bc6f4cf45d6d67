// info: what it tells of pictures.
#include <rapidjson/document.h>

#include "cli/Exiftool.h"
#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace {

using InfoTest = ProgramTest;

/// The value behind a label, or what was said instead.
std::string findValue(const Outcome& outcome, const std::string& label) {
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
    EXPECT_EQ(findValue(outcome, "file"), ZQX_SAMPLE);
    EXPECT_EQ(findValue(outcome, "format"), "PNG (Portable Network Graphics)");
    EXPECT_EQ(findValue(outcome, "size"), "600 x 400");
    EXPECT_EQ(findValue(outcome, "bits per pixel"), "24");
    EXPECT_EQ(findValue(outcome, "colour"), "RGB");
    EXPECT_EQ(findValue(outcome, "transparency"), "no");
}

TEST_F(InfoTest, TellsOfFloats) {
    writePicture(at("in.exr"), fillSamples(FIT_RGBAF, 128, 7, 5), EXR_FLOAT);
    const Outcome outcome = zqxImg({"info", at("in.exr")});
    EXPECT_EQ(findValue(outcome, "size"), "7 x 5");
    EXPECT_EQ(findValue(outcome, "bits per pixel"), "128");
    EXPECT_EQ(findValue(outcome, "samples"), "32-bit float, four channels");
}

TEST_F(InfoTest, TellsTheOrientationAndTheStoredSize) {
    writeOrientedJpeg(at("in.jpg"), 40, 20, 6);
    const Outcome outcome = zqxImg({"info", at("in.jpg")});
    EXPECT_EQ(findValue(outcome, "size"), "40 x 20");
    EXPECT_EQ(findValue(outcome, "orientation"), "6 (to be turned by 90 degrees clockwise)");
    EXPECT_EQ(findValue(outcome, "metadata").substr(0, 5), "Exif ");
}

TEST_F(InfoTest, TellsResolutionAndProfile) {
    const Bitmap source = paint(4, 4, 24, motley);
    FreeImage_SetDotsPerMeterX(source.get(), 11811);
    FreeImage_SetDotsPerMeterY(source.get(), 11811);
    std::vector<BYTE> profile(200, 0);
    FreeImage_CreateICCProfile(source.get(), profile.data(), 200);
    writePicture(at("in.tif"), source);
    const Outcome outcome = zqxImg({"info", at("in.tif")});
    EXPECT_EQ(findValue(outcome, "resolution"), "11811 x 11811 dots per metre (300 x 300 dpi)");
    EXPECT_EQ(findValue(outcome, "colour profile"), "200 bytes");
    EXPECT_EQ(outcome.err, "");
}

TEST_F(InfoTest, TellsOfMetadataByClass) {
    writePicture(at("in.jpg"), paint(16, 16, 24, motley));
    EXPECT_EQ(findValue(zqxImg({"info", at("in.jpg")}), "metadata"), "none");
    writeTags(at("in.jpg"), {"-EXIF:Make=Tester", "-EXIF:DateTimeOriginal=2024:05:06 07:08:09", "-IPTC:City=Example",
                             "-XMP-dc:Title=A title", "-File:Comment=A word"});
    const Outcome outcome = zqxImg({"info", at("in.jpg")});
    const std::string classes = findValue(outcome, "metadata");
    for (const char* words : {"Exif ", "IPTC 19 bytes", "XMP ", "1 comment"}) { // two datasets of 5 + 7 and 5 + 2 bytes
        EXPECT_NE(classes.find(words), std::string::npos) << words << " is not in " << classes;
    }
    EXPECT_EQ(findValue(outcome, "camera make"), "Tester");
    EXPECT_EQ(findValue(outcome, "taken"), "2024:05:06 07:08:09");
    EXPECT_EQ(outcome.out.find("GPS"), std::string::npos);
}

TEST_F(InfoTest, TellsOfThePosition) {
    writePicture(at("in.jpg"), paint(16, 16, 24, motley));
    writeTags(at("in.jpg"),
              {"-GPS:GPSLatitude=48.5", "-GPS:GPSLatitudeRef=N", "-GPS:GPSLongitude=9.25", "-GPS:GPSLongitudeRef=E"});
    EXPECT_EQ(findValue(zqxImg({"info", at("in.jpg")}), "GPS position").substr(0, 3), "yes");
}

TEST_F(InfoTest, JsonIsOneObject) {
    const std::string in = at("a \"quoted\" \xFF name.jpg"); // with a byte that is no UTF-8
    writeOrientedJpeg(in, 40, 20, 6);
    writeTags(in, {"-EXIF:Make=T\xC3\xA4ster", "-XMP-dc:Title=A title"});
    const Outcome outcome = zqxImg({"info", in, "--json"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    rapidjson::Document document;
    ASSERT_FALSE(document.Parse<rapidjson::kParseValidateEncodingFlag>(outcome.out.c_str()).HasParseError())
        << outcome.out;
    const std::string file = document["file"].GetString();
    EXPECT_TRUE(file.ends_with("a \"quoted\" \xEF\xBF\xBD name.jpg")) << file;
    EXPECT_STREQ(document["format"].GetString(), "JPEG");
    EXPECT_EQ(document["width"].GetInt(), 40);
    EXPECT_EQ(document["height"].GetInt(), 20);
    EXPECT_EQ(document["orientation"].GetInt(), 6);
    EXPECT_GT(document["metadata"]["exif"].GetInt(), 0);
    EXPECT_GT(document["metadata"]["xmp"].GetInt(), 0);
    EXPECT_EQ(document["metadata"]["iptc"].GetInt(), 0);
    EXPECT_STREQ(document["exif"]["cameraMake"].GetString(), "T\xC3\xA4ster");
    EXPECT_FALSE(document["exif"]["gpsPosition"].GetBool());
}

TEST_F(InfoTest, ContentDecidesOverTheExtension) {
    writePicture(at("in.png"), paint(4, 4, 24, motley));
    writeFile(at("in.tif"), readFile(at("in.png")));
    EXPECT_EQ(findValue(zqxImg({"info", at("in.tif")}), "format"), "PNG (Portable Network Graphics)");
}

TEST_F(InfoTest, FailuresAreTold) {
    fail(1, {"info", at("none.png")}, at("none.png") + ": there is no such file");
    writeFile(at("in.dat"), "no picture at all, by any means");
    fail(1, {"info", at("in.dat")}, "is not a picture in a known format");
}

} // namespace zqx::img::test
