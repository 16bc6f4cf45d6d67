// compare: what it finds, in which words, and its exit codes.
#include <algorithm>
#include <cmath>
#include <limits>

#include <rapidjson/document.h>

#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace {

constexpr unsigned WIDTH = 20;
constexpr unsigned HEIGHT = 10;

class CompareTest : public ProgramTest {
protected:
    CompareTest() { writePicture(at("a.png"), motleyPicture()); }

    static Bitmap motleyPicture() { return paint(WIDTH, HEIGHT, 24, motley); }

    /// motley with the green of pixel (7, 3) moved.
    static Bitmap movedBy(int steps) {
        return paint(WIDTH, HEIGHT, 24, [steps](unsigned x, unsigned y) {
            Rgba color = motley(x, y);
            color.g += x == 7 && y == 3 ? steps : 0;
            return color;
        });
    }

    Outcome compare(const std::string& a, const std::string& b, const std::vector<std::string>& options = {}) const {
        std::vector<std::string> command = {"compare", at(a), at(b)};
        command.insert(command.end(), options.begin(), options.end());
        return zqxImg(command);
    }

    /// The findings in JSON, with the exit code expected.
    rapidjson::Document findings(int exitCode, const std::string& a, const std::string& b) const {
        const Outcome outcome = compare(a, b, {"--json"});
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        rapidjson::Document document;
        document.Parse(outcome.out.c_str());
        EXPECT_TRUE(document.IsObject()) << outcome.out;
        return document;
    }

    void writeFloats(const std::string& name, FREE_IMAGE_TYPE type, const std::vector<float>& values,
                     std::size_t channels = 1) const {
        const Bitmap bitmap(FreeImage_AllocateT(type, static_cast<int>(values.size() / channels), 1));
        std::copy(values.begin(), values.end(), reinterpret_cast<float*>(FreeImage_GetBits(bitmap.get())));
        writePicture(at(name), bitmap, EXR_FLOAT);
    }
};

bool says(const Outcome& outcome, const std::string& words) {
    return outcome.out.find(words) != std::string::npos;
}

} // namespace

TEST_F(CompareTest, EqualPicturesEndWithZero) {
    writePicture(at("b.bmp"), motleyPicture());
    const Outcome outcome = compare("a.png", "b.bmp");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(says(outcome, "largest difference  0 (0 of 255)\n")) << outcome.out;
    EXPECT_TRUE(says(outcome, "PSNR                infinite\n")) << outcome.out;
    EXPECT_TRUE(says(outcome, "differing pixels    0 of 200\n")) << outcome.out;
    EXPECT_TRUE(says(outcome, "result              equal\n")) << outcome.out;
}

TEST_F(CompareTest, OneDifferenceIsFoundWithItsPlaceAndChannel) {
    writePicture(at("b.png"), movedBy(5));
    const Outcome outcome = compare("a.png", "b.png");
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_TRUE(says(outcome, "largest difference  0.0196078 (5 of 255), green of pixel 7, 3\n")) << outcome.out;
    EXPECT_TRUE(says(outcome, "differing pixels    1 of 200\n")) << outcome.out;
    EXPECT_TRUE(says(outcome, "result              different\n")) << outcome.out;
}

TEST_F(CompareTest, JsonTellsTheSame) {
    writePicture(at("b.png"), movedBy(5));
    const rapidjson::Document document = findings(3, "a.png", "b.png");
    EXPECT_STREQ(document["result"].GetString(), "different");
    EXPECT_STREQ(document["a"]["file"].GetString(), at("a.png").c_str());
    EXPECT_EQ(document["b"]["width"].GetUint(), WIDTH);
    EXPECT_STREQ(document["scale"].GetString(), "stored");
    EXPECT_DOUBLE_EQ(document["largest"].GetDouble(), 5.0 / 255.0);
    EXPECT_EQ(document["largestAt"]["x"].GetUint(), 7U);
    EXPECT_EQ(document["largestAt"]["y"].GetUint(), 3U);
    EXPECT_STREQ(document["largestAt"]["channel"].GetString(), "green");
    EXPECT_DOUBLE_EQ(document["mean"].GetDouble(), 5.0 / 255.0 / (WIDTH * HEIGHT * 3));
    const double meanSquare = 25.0 / (255.0 * 255.0) / (WIDTH * HEIGHT * 3);
    EXPECT_NEAR(document["psnr"].GetDouble(), 10.0 * std::log10(1.0 / meanSquare), 1e-9);
    EXPECT_EQ(document["differingPixels"].GetUint(), 1U);
}

TEST_F(CompareTest, JsonOfEqualPicturesHasNoPlaceAndNoFiniteRatio) {
    const rapidjson::Document document = findings(0, "a.png", "a.png");
    EXPECT_STREQ(document["result"].GetString(), "equal");
    EXPECT_TRUE(document["largestAt"].IsNull());
    EXPECT_TRUE(document["psnr"].IsNull());
}

TEST_F(CompareTest, DifferencesUpToTheToleranceAreEqual) {
    writePicture(at("b.png"), movedBy(5));
    EXPECT_EQ(compare("a.png", "b.png", {"--tolerance", "5/255"}).exitCode, 0);
    EXPECT_TRUE(says(compare("a.png", "b.png", {"--tolerance", "0.02"}), "equal within the tolerance"));
    EXPECT_EQ(compare("a.png", "b.png", {"--tolerance", "4.999/255"}).exitCode, 3);
    EXPECT_EQ(compare("a.png", "b.png", {"--tolerance", "0.0196"}).exitCode, 3);
}

TEST_F(CompareTest, TopLevelOptionIsTheSameCommand) {
    writePicture(at("b.png"), movedBy(1));
    const Outcome outcome = zqxImg({"--compare", at("a.png"), at("b.png"), "--tolerance", "1/255"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, compare("a.png", "b.png", {"--tolerance", "1/255"}).out);
}

TEST_F(CompareTest, OtherSizeCannotBeCompared) {
    writePicture(at("b.png"), paint(WIDTH, HEIGHT + 1, 24, motley));
    const Outcome outcome = compare("a.png", "b.png");
    EXPECT_EQ(outcome.exitCode, 4);
    EXPECT_EQ(outcome.out, at("a.png") + " is 20 x 10, " + at("b.png") + " is 20 x 11\n");
    EXPECT_STREQ(findings(4, "a.png", "b.png")["result"].GetString(), "incomparable");
}

TEST_F(CompareTest, OtherChannelsCannotBeCompared) {
    writePicture(at("alpha.png"), paint(WIDTH, HEIGHT, 32, motley));
    writePicture(at("grey.png"), Bitmap(FreeImage_ConvertToGreyscale(motleyPicture().get())));
    const Outcome alpha = compare("a.png", "alpha.png");
    EXPECT_EQ(alpha.exitCode, 4);
    EXPECT_EQ(alpha.out, at("a.png") + " is colour, " + at("alpha.png") + " is colour with alpha\n");
    const Outcome grey = compare("grey.png", "a.png");
    EXPECT_EQ(grey.exitCode, 4);
    EXPECT_EQ(grey.out, at("grey.png") + " is grey, " + at("a.png") + " is colour\n");
}

TEST_F(CompareTest, AlphaCountsAsWell) {
    writePicture(at("a32.png"), paint(4, 4, 32, [](unsigned, unsigned) { return Rgba{9, 9, 9, 100}; }));
    writePicture(at("b32.png"), paint(4, 4, 32, [](unsigned, unsigned) { return Rgba{9, 9, 9, 103}; }));
    EXPECT_TRUE(says(compare("a32.png", "b32.png"), "(3 of 255), alpha of pixel 0, 0"));
}

TEST_F(CompareTest, SixteenBitsAreComparedCodeByCode) {
    const Bitmap a = fillSamples(FIT_RGBA16, 64, WIDTH, HEIGHT);
    const Bitmap b(FreeImage_Clone(a.get()));
    WORD* topRow = reinterpret_cast<WORD*>(FreeImage_GetScanLine(b.get(), HEIGHT - 1));
    topRow[4 * 6 + 2] = static_cast<WORD>(topRow[4 * 6 + 2] + 1);
    writePicture(at("a.tif"), a);
    writePicture(at("b.tif"), b);
    const Outcome outcome = compare("a.tif", "b.tif");
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_TRUE(says(outcome, "(1 of 65535), blue of pixel 6, 0\n")) << outcome.out;
    EXPECT_EQ(compare("a.tif", "b.tif", {"--tolerance", "1/65535"}).exitCode, 0);
}

TEST_F(CompareTest, EightBitsAreComparedWithSixteenOnTheFinerScale) {
    Bitmap deep(FreeImage_AllocateT(FIT_RGB16, WIDTH, HEIGHT));
    for (unsigned y = 0; y < HEIGHT; ++y) {
        auto* pixel = reinterpret_cast<FIRGB16*>(FreeImage_GetScanLine(deep.get(), static_cast<int>(HEIGHT - 1 - y)));
        for (unsigned x = 0; x < WIDTH; ++x) {
            const Rgba color = motley(x, y);
            pixel[x] = {static_cast<WORD>(257 * color.r), static_cast<WORD>(257 * color.g),
                        static_cast<WORD>(257 * color.b)};
        }
    }
    writePicture(at("deep.png"), deep);
    const Outcome outcome = compare("a.png", "deep.png");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(says(outcome, "0 (0 of 65535)")) << outcome.out;
    EXPECT_TRUE(says(outcome, "16-bit colour")) << outcome.out;
}

TEST_F(CompareTest, EncodedPicturesAreComparedWithFloatsInLinearLight) {
    zqxImg({"apply", at("a.png"), "-o", at("a.exr")});
    const Outcome outcome = compare("a.png", "a.exr");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out;
    EXPECT_TRUE(says(outcome, "compared as         linear light")) << outcome.out;
}

TEST_F(CompareTest, FloatsAreComparedAsTheyAreBeyondWhite) {
    writeFloats("a.pfm", FIT_FLOAT, {1.0F, 100.0F, -3.0F});
    writeFloats("b.pfm", FIT_FLOAT, {1.0F, 102.5F, -3.0F});
    const Outcome outcome = compare("a.pfm", "b.pfm");
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_TRUE(says(outcome, "largest difference  2.5, grey of pixel 1, 0\n")) << outcome.out;
    EXPECT_EQ(compare("a.pfm", "b.pfm", {"--tolerance", "2.5"}).exitCode, 0);
}

TEST_F(CompareTest, NotANumberEqualsItsLikeAndNothingElse) {
    constexpr float NOT_A_NUMBER = std::numeric_limits<float>::quiet_NaN();
    constexpr float INF = std::numeric_limits<float>::infinity();
    writeFloats("a.pfm", FIT_FLOAT, {NOT_A_NUMBER, INF});
    writeFloats("b.pfm", FIT_FLOAT, {0.0F, INF});
    EXPECT_EQ(compare("a.pfm", "a.pfm").exitCode, 0);
    const Outcome outcome = compare("a.pfm", "b.pfm", {"--tolerance", "1000"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_TRUE(says(outcome, "largest difference  infinite, grey of pixel 0, 0\n")) << outcome.out;
    EXPECT_TRUE(findings(3, "a.pfm", "b.pfm")["largest"].IsNull());
}

TEST_F(CompareTest, StraightAndMultipliedAlphaAreMadeAlike) {
    writeFloats("a.tif", FIT_RGBAF, {0.5F, 0.25F, 1.0F, 0.5F}, 4);
    writeFloats("b.exr", FIT_RGBAF, {0.25F, 0.125F, 0.5F, 0.5F}, 4);
    EXPECT_EQ(compare("a.tif", "b.exr").exitCode, 0);
}

TEST_F(CompareTest, DifferencePictureShowsTheLargestAsWhite) {
    writePicture(at("b.png"), paint(WIDTH, HEIGHT, 24, [](unsigned x, unsigned y) {
                     Rgba color = motley(x, y);
                     if (y == 3 && x == 7) {
                         color.g += color.g < 128 ? 10 : -10;
                     } else if (y == 3 && x == 8) {
                         color.r += color.r < 128 ? 4 : -4;
                     }
                     return color;
                 }));
    EXPECT_EQ(compare("a.png", "b.png", {"--difference", at("where.png")}).exitCode, 3);
    const Bitmap where = readPicture(at("where.png"));
    EXPECT_EQ(pixelAt(where, 7, 3), (Rgba{0, 255, 0}));
    EXPECT_EQ(pixelAt(where, 8, 3), (Rgba{102, 0, 0}));
    EXPECT_EQ(pixelAt(where, 9, 3), (Rgba{0, 0, 0}));
}

TEST_F(CompareTest, DifferencePictureOfEqualPicturesIsBlack) {
    EXPECT_EQ(compare("a.png", "a.png", {"--difference", at("where.jpg")}).exitCode, 0);
    EXPECT_EQ(pixelAt(readPicture(at("where.jpg")), 5, 5), (Rgba{0, 0, 0}));
}

TEST_F(CompareTest, UnreadableFilesEndWithOne) {
    fail(1, {"compare", at("a.png"), at("none.png")}, at("none.png") + ": there is no such file");
    writeFile(at("text.png"), "no picture");
    fail(1, {"compare", at("text.png"), at("a.png")}, at("text.png"));
}

TEST_F(CompareTest, TolerancesThatAreNoneEndWithTwo) {
    for (const char* tolerance : {"much", "-1", "1/0", "1/", "/2", "nan", "inf", "1/2/3", ""}) {
        fail(2, {"compare", at("a.png"), at("a.png"), std::string("--tolerance=") + tolerance}, "--tolerance");
    }
    fail(2, {"compare", at("a.png")}, "compare: missing B");
    fail(2, {"compare", at("a.png"), at("a.png"), "--difference", at("where.xyz")}, "unknown picture extension");
}

} // namespace zqx::img::test
