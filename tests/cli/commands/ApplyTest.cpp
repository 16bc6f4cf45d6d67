// apply: what the adjustments do to pixels, which way up pictures come out, and what is carried over.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>

#include <sys/stat.h>

#include <zqx/img/ImageProcessingPipeline.h>

#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace fs = std::filesystem;

namespace {

using ApplyTest = ProgramTest;

constexpr unsigned WIDTH = 37; // odd, so that rows are padded
constexpr unsigned HEIGHT = 23;

Bitmap motleyPicture(int bitsPerPixel = 24) {
    return paint(WIDTH, HEIGHT, bitsPerPixel, motley);
}

Image getView(const Bitmap& bitmap) {
    return Image(FreeImage_GetBits(bitmap.get()), FreeImage_GetWidth(bitmap.get()), FreeImage_GetHeight(bitmap.get()),
                 Image::SBGR8, FreeImage_GetPitch(bitmap.get()));
}

/// What the library itself makes of a 24-bit picture, given with its top row first: sums over rows have an order.
Bitmap rendered(const Bitmap& source, ImageProcessingPipeline pipeline) {
    Bitmap result(FreeImage_Clone(source.get()));
    Image view = getView(result);
    view.flipVertical();
    const std::shared_ptr<Image> upright = view.convertTo(Image::SBGR8);
    upright->copyFrom(view);
    pipeline.setActiveStages(65535);
    pipeline.setInputImage(upright);
    pipeline.execute(view);
    view.flipVertical();
    return result;
}

std::vector<BYTE> profileFor(const char* colorSpace) {
    std::vector<BYTE> profile(256, 0);
    profile[2] = 1; // 256 bytes
    profile[8] = 2;
    const std::string head = std::string("mntr") + colorSpace + "XYZ ";
    std::copy(head.begin(), head.end(), profile.begin() + 12);
    std::copy_n("acsp", 4, profile.begin() + 36);
    return profile;
}

} // namespace

TEST_F(ApplyTest, GradedSampleIsWhatTheLibraryRenders) {
    succeed({"apply", ZQX_SAMPLE, "-o", at("out.png"), "--set", "exposure=0.4", "--set", "contrast=0.55", "--set",
             "temperature=5200", "--set", "saturation=1.3", "--set", "sharpness=0.2", "--set", "flipX=true"});
    ImageProcessingPipeline pipeline(0);
    ColorGrading grading;
    grading.setExposure(0.4F);
    grading.setContrast(0.55F);
    grading.setTemperature(5200.0F);
    grading.setSaturation(1.3F);
    pipeline.setColorGrading(grading);
    pipeline.setSharpness(0.2F);
    pipeline.setFlipHorizontal(1);
    EXPECT_TRUE(isIdentical(readPicture(at("out.png")), rendered(readPicture(ZQX_SAMPLE), pipeline)));
}

TEST_F(ApplyTest, GradientMapColorsAreLinearAndNamedByTheirEnds) {
    succeed({"apply", ZQX_SAMPLE, "-o", at("out.png"), "--set", "gradient.intensity=1", "--set",
             "gradient.white=1,0.5,0", "--set", "gradient.black=0,0,0.25"});
    ImageProcessingPipeline pipeline(0);
    ColorGrading grading;
    grading.setGradientMapIntensity(1.0F);
    grading.setGradientMap(ColorGradient({0.0F, 0.0F, 0.25F, 1.0F}, {1.0F, 0.5F, 0.0F, 1.0F}));
    pipeline.setColorGrading(grading);
    EXPECT_TRUE(isIdentical(readPicture(at("out.png")), rendered(readPicture(ZQX_SAMPLE), pipeline)));
}

TEST_F(ApplyTest, SettingsGoOverTheDocumentInOrder) {
    succeed({"params", "--set", "exposure=1", "--set", "saturation=0.5", "-o", at("look.json")});
    succeed({"apply", ZQX_SAMPLE, "-o", at("mixed.png"), "--set", "exposure=3", "--set", "exposure=-1", "--params",
             at("look.json")});
    succeed({"apply", ZQX_SAMPLE, "-o", at("plain.png"), "--set", "exposure=-1", "--set", "saturation=0.5"});
    EXPECT_EQ(readFile(at("mixed.png")), readFile(at("plain.png")));
}

TEST_F(ApplyTest, FlipXAloneMovesPixelsExactly) {
    const Bitmap source = motleyPicture();
    writePicture(at("in.png"), source);
    succeed({"apply", at("in.png"), "-o", at("out.png"), "--set", "flipX=on"});
    const Bitmap expected = paint(WIDTH, HEIGHT, 24, [](unsigned x, unsigned y) { return motley(WIDTH - 1 - x, y); });
    EXPECT_TRUE(isIdentical(readPicture(at("out.png")), expected));
}

TEST_F(ApplyTest, FlipYAloneMovesPixelsExactly) {
    const Bitmap source = motleyPicture();
    writePicture(at("in.png"), source);
    succeed({"apply", at("in.png"), "-o", at("out.png"), "--set", "flipY=1"});
    const Bitmap expected = paint(WIDTH, HEIGHT, 24, [](unsigned x, unsigned y) { return motley(x, HEIGHT - 1 - y); });
    EXPECT_TRUE(isIdentical(readPicture(at("out.png")), expected));
}

TEST_F(ApplyTest, ColorsAndDirectionsStayAcrossFormats) {
    const auto color = [](unsigned x, unsigned y) { return quarters(x, y, 80, 40); };
    writePicture(at("in.png"), paint(80, 40, 24, color));
    for (const char* name : {"out.jpg", "out.webp", "out.gif", "out.tga", "out.bmp", "out.ppm"}) {
        ASSERT_EQ(zqxImg({"apply", at("in.png"), "-o", at(name), "--quality", "100"}).exitCode, 0) << name;
        const Bitmap out(FreeImage_ConvertTo24Bits(readPicture(at(name)).get()));
        for (const unsigned x : {10U, 70U}) {
            for (const unsigned y : {5U, 35U}) {
                const Rgba got = pixelAt(out, x, y);
                const Rgba wanted = color(x, y);
                const int distance =
                    std::abs(got.r - wanted.r) + std::abs(got.g - wanted.g) + std::abs(got.b - wanted.b);
                EXPECT_LE(distance, 12) << name << " at " << x << ", " << y << ": " << got;
            }
        }
    }
}

TEST_F(ApplyTest, InversionIsInLinearLight) {
    writePicture(at("in.png"), paint(1, 1, 24, [](unsigned, unsigned) { return Rgba{0, 128, 255}; }));
    succeed({"apply", at("in.png"), "-o", at("out.png"), "--set", "invert=true"});
    // 1 - (128 / 255)^2.2 = 0.7805, encoded 0.8935 * 255 = 227.8
    EXPECT_EQ(pixelAt(readPicture(at("out.png")), 0, 0), (Rgba{255, 227, 0}));
}

TEST_F(ApplyTest, AlphaSurvivesGrading) {
    writePicture(at("in.png"), motleyPicture(32));
    succeed({"apply", at("in.png"), "-o", at("out.png"), "--set", "exposure=1"});
    const Bitmap out = readPicture(at("out.png"));
    ASSERT_EQ(FreeImage_GetBPP(out.get()), 32U);
    for (unsigned y = 0; y < HEIGHT; ++y) {
        for (unsigned x = 0; x < WIDTH; ++x) {
            ASSERT_EQ(pixelAt(out, x, y).a, motley(x, y).a);
        }
    }
}

TEST_F(ApplyTest, LostTransparencyIsSaid) {
    writePicture(at("in.png"), motleyPicture(32));
    const Outcome outcome = zqxImg({"apply", at("in.png"), "-o", at("out.jpg")});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_NE(outcome.err.find("warning: " + at("out.jpg") + ": this format has no transparency"), std::string::npos);
}

TEST_F(ApplyTest, OpaqueAlphaIsDroppedWithoutAWord) {
    writePicture(at("in.png"), paint(4, 4, 32, [](unsigned x, unsigned y) { return quarters(x, y, 4, 4); }));
    succeed({"apply", at("in.png"), "-o", at("out.jpg")});
}

TEST_F(ApplyTest, GreyStaysGrey) {
    const auto grey = [](unsigned i) { return Rgba{static_cast<int>(i), static_cast<int>(i), static_cast<int>(i)}; };
    const auto index = [](unsigned x, unsigned y) { return (x * 7 + y * 11) % 256; };
    writePicture(at("in.png"), paintIndexed(WIDTH, HEIGHT, 8, grey, index));
    succeed({"apply", at("in.png"), "-o", at("out.png"), "--set", "exposure=0.5", "--set", "hue=30"});
    EXPECT_EQ(FreeImage_GetColorType(readPicture(at("out.png")).get()), FIC_MINISBLACK);
}

TEST_F(ApplyTest, GreyTakesTheRedOfALookThatAddsColor) {
    const auto grey = [](unsigned i) { return Rgba{static_cast<int>(i), static_cast<int>(i), static_cast<int>(i)}; };
    writePicture(at("in.png"), paintIndexed(8, 8, 8, grey, [](unsigned, unsigned) { return 255U; }));
    succeed({"apply", at("in.png"), "-o", at("out.png"), "--set", "gradient.intensity=1", "--set",
             "gradient.white=0.5,1,0"});
    const Bitmap out = readPicture(at("out.png"));
    ASSERT_EQ(FreeImage_GetColorType(out.get()), FIC_MINISBLACK);
    EXPECT_EQ(pixelAt(out, 3, 3).r, 186); // trunc(255 * 0.5^(1/2.2))
}

TEST_F(ApplyTest, JpegIsTurnedUpright) {
    // Orientation 6 asks for a quarter turn clockwise: the stored left edge becomes the top.
    writeOrientedJpeg(at("in.jpg"), 40, 20, 6);
    succeed({"apply", at("in.jpg"), "-o", at("out.png")});
    const Bitmap out = readPicture(at("out.png"));
    ASSERT_EQ(FreeImage_GetWidth(out.get()), 20U);
    ASSERT_EQ(FreeImage_GetHeight(out.get()), 40U);
    EXPECT_GT(pixelAt(out, 4, 4).b, 200); // stored bottom left: blue
    EXPECT_LT(pixelAt(out, 4, 4).r, 60);
    EXPECT_GT(pixelAt(out, 15, 4).r, 200); // stored top left: red
    EXPECT_LT(pixelAt(out, 15, 4).g, 60);
    EXPECT_GT(pixelAt(out, 15, 35).g, 200); // stored top right: green
    EXPECT_LT(pixelAt(out, 15, 35).r, 60);
}

TEST_F(ApplyTest, QualityChangesTheSize) {
    for (const char* extension : {".jpg", ".webp"}) {
        std::vector<std::uintmax_t> sizes;
        for (const char* quality : {"20", "75", "100"}) {
            const std::string name = at(std::string("q") + quality + extension);
            succeed({"apply", ZQX_SAMPLE, "-o", name, "--quality", quality});
            sizes.push_back(fs::file_size(name));
        }
        EXPECT_LT(sizes[0] * 2, sizes[1]) << extension;
        EXPECT_LT(sizes[1] * 3, sizes[2] * 2) << extension;
    }
}

TEST_F(ApplyTest, FineJpegKeepsColorAtFullResolution) {
    // Columns of two colours of one luma: subsampled colour would blend them.
    writePicture(at("in.png"), paint(64, 64, 24, [](unsigned x, unsigned) {
                     return x % 2 == 0 ? Rgba{200, 60, 60} : Rgba{60, 131, 60};
                 }));
    succeed({"apply", at("in.png"), "-o", at("fine.jpg"), "--quality", "90"});
    succeed({"apply", at("in.png"), "-o", at("plain.jpg"), "--quality", "89"});
    const Bitmap fine = readPicture(at("fine.jpg"));
    const Bitmap plain = readPicture(at("plain.jpg"));
    EXPECT_GT(pixelAt(fine, 30, 30).r - pixelAt(fine, 31, 30).r, 100);
    EXPECT_LT(pixelAt(plain, 30, 30).r - pixelAt(plain, 31, 30).r, 70);
}

TEST_F(ApplyTest, BeforeAfterShowsBothHalves) {
    const Bitmap source = paint(40, 10, 24, [](unsigned x, unsigned y) { return motley(x, y); });
    writePicture(at("in.png"), source);
    succeed({"apply", at("in.png"), "-o", at("out.png"), "--set", "exposure=1", "--before-after", at("both.png")});
    const Bitmap out = readPicture(at("out.png"));
    const Bitmap both = readPicture(at("both.png"));
    ASSERT_EQ(FreeImage_GetWidth(both.get()), 40U);
    for (unsigned y = 0; y < 10; ++y) {
        for (unsigned x = 0; x < 40; ++x) {
            const Rgba expected = x < 19 ? pixelAt(source, x, y) : x < 21 ? Rgba{255, 255, 255} : pixelAt(out, x, y);
            ASSERT_EQ(pixelAt(both, x, y), expected) << x << ", " << y;
        }
    }
}

TEST_F(ApplyTest, BeforeAfterChoosesItsOwnForm) {
    writePicture(at("in.exr"), fillSamples(FIT_RGBF, 96, 16, 9), EXR_FLOAT);
    EXPECT_EQ(zqxImg({"apply", at("in.exr"), "-o", at("out.exr"), "--before-after", at("both.bmp")}).exitCode, 0);
    EXPECT_EQ(FreeImage_GetImageType(readPicture(at("out.exr")).get()), FIT_RGBF);
    const Bitmap both = readPicture(at("both.bmp"));
    EXPECT_EQ(FreeImage_GetBPP(both.get()), 24U);
    EXPECT_EQ(pixelAt(both, 7, 4), (Rgba{255, 255, 255}));
    EXPECT_EQ(pixelAt(both, 8, 4), (Rgba{255, 255, 255}));
}

TEST_F(ApplyTest, OnePixelWideBeforeAfterIsAllDivider) {
    writePicture(at("in.png"), paint(1, 3, 24, motley));
    succeed({"apply", at("in.png"), "-o", at("out.png"), "--before-after", at("both.png")});
    EXPECT_EQ(pixelAt(readPicture(at("both.png")), 0, 1), (Rgba{255, 255, 255}));
}

TEST_F(ApplyTest, InputMayBeTheOutput) {
    writePicture(at("picture.png"), motleyPicture());
    succeed({"apply", at("picture.png"), "-o", at("other.png"), "--set", "exposure=-1"});
    succeed({"apply", at("picture.png"), "-o", at("picture.png"), "--set", "exposure=-1"});
    EXPECT_EQ(readFile(at("picture.png")), readFile(at("other.png")));
    EXPECT_EQ(files(), (std::vector<std::string>{"other.png", "picture.png"}));
}

TEST_F(ApplyTest, ReplacedFileKeepsItsPermissionsAndItsLink) {
    writePicture(at("picture.png"), motleyPicture());
    fs::permissions(at("picture.png"), fs::perms(0640));
    fs::create_symlink("picture.png", at("link.png"));
    succeed({"apply", at("picture.png"), "-o", at("link.png"), "--set", "flipX=true"});
    EXPECT_TRUE(fs::is_symlink(at("link.png")));
    EXPECT_EQ(fs::status(at("picture.png")).permissions(), fs::perms(0640));
    const Bitmap expected = paint(WIDTH, HEIGHT, 24, [](unsigned x, unsigned y) { return motley(WIDTH - 1 - x, y); });
    EXPECT_TRUE(isIdentical(readPicture(at("picture.png")), expected));
}

TEST_F(ApplyTest, LinkToAFileThatIsNotThereYetIsWrittenThrough) {
    fs::create_symlink("target.png", at("link.png"));
    succeed({"apply", ZQX_SAMPLE, "-o", at("link.png")});
    EXPECT_TRUE(fs::is_symlink(at("link.png")));
    EXPECT_TRUE(fs::is_regular_file(at("target.png")));
}

TEST_F(ApplyTest, NewFileHasThePermissionsOfAnyNewFile) {
    const mode_t before = umask(027);
    succeed({"apply", ZQX_SAMPLE, "-o", at("out.png")});
    umask(before);
    EXPECT_EQ(fs::status(at("out.png")).permissions(), fs::perms(0640));
}

TEST_F(ApplyTest, FileNamesMayBeInAnyScript) {
    const std::string in = at("Grüße 日本.png");
    const std::string out = at("Ελλάδα – кофе ☕.tif");
    writePicture(in, motleyPicture());
    succeed({"apply", in, "-o", out});
    EXPECT_TRUE(isIdentical(readPicture(out), motleyPicture()));
}

TEST_F(ApplyTest, ContentDecidesOverTheExtension) {
    writePicture(at("really.png"), motleyPicture());
    fs::rename(at("really.png"), at("claims.jpg"));
    succeed({"apply", at("claims.jpg"), "-o", at("out.png")});
    EXPECT_TRUE(isIdentical(readPicture(at("out.png")), motleyPicture()));
}

TEST_F(ApplyTest, ResolutionIsCarriedOver) {
    const Bitmap source = motleyPicture();
    FreeImage_SetDotsPerMeterX(source.get(), 11811);
    FreeImage_SetDotsPerMeterY(source.get(), 5906);
    writePicture(at("in.png"), source);
    succeed({"apply", at("in.png"), "-o", at("out.png"), "--set", "exposure=1"});
    const Bitmap out = readPicture(at("out.png"));
    EXPECT_EQ(FreeImage_GetDotsPerMeterX(out.get()), 11811U);
    EXPECT_EQ(FreeImage_GetDotsPerMeterY(out.get()), 5906U);
}

TEST_F(ApplyTest, ColorProfileIsCarriedOverWhereItFits) {
    std::vector<BYTE> profile = profileFor("RGB ");
    const Bitmap source = motleyPicture();
    FreeImage_CreateICCProfile(source.get(), profile.data(), static_cast<long>(profile.size()));
    writePicture(at("in.tif"), source);
    succeed({"apply", at("in.tif"), "-o", at("out.tif"), "--set", "exposure=1"});
    const Bitmap out = readPicture(at("out.tif"));
    const FIICCPROFILE* carried = FreeImage_GetICCProfile(out.get());
    ASSERT_EQ(carried->size, profile.size());
    EXPECT_EQ(std::memcmp(carried->data, profile.data(), profile.size()), 0);
}

TEST_F(ApplyTest, ColorProfileThatDoesNotFitIsLeftOutAloud) {
    std::vector<BYTE> profile = profileFor("GRAY");
    const Bitmap source = motleyPicture();
    FreeImage_CreateICCProfile(source.get(), profile.data(), static_cast<long>(profile.size()));
    writePicture(at("in.tif"), source);
    const Outcome outcome = zqxImg({"apply", at("in.tif"), "-o", at("out.tif")});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_NE(outcome.err.find("colour profile"), std::string::npos);
    EXPECT_EQ(FreeImage_GetICCProfile(readPicture(at("out.tif")).get())->size, 0U);
}

} // namespace zqx::img::test
