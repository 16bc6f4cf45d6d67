// apply: 16-bit and float pictures keep their depth, and what cannot be kept is told.
#include <algorithm>
#include <cmath>
#include <cstring>
#include <tuple>

#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace {

constexpr unsigned SIDE = 256; // room for all codes

constexpr const char* MAGICK = "convert-im6.q16hdri"; // another reader and writer

using DepthTest = ProgramTest;

/// A kind of 16-bit picture and a format that holds it.
struct Deep {
    FREE_IMAGE_TYPE type;
    const char* extension;
};

std::ostream& operator<<(std::ostream& stream, const Deep& deep) {
    return stream << deep.type << ' ' << deep.extension;
}

unsigned getChannels(FREE_IMAGE_TYPE type) {
    return type == FIT_UINT16 ? 1 : type == FIT_RGB16 ? 3 : 4;
}

WORD* wordsAt(const Bitmap& bitmap, unsigned y) {
    const unsigned row = FreeImage_GetHeight(bitmap.get()) - 1 - y;
    return reinterpret_cast<WORD*>(FreeImage_GetScanLine(bitmap.get(), static_cast<int>(row)));
}

/// Every channel holds every code once, each channel at another place.
Bitmap allCodes(FREE_IMAGE_TYPE type) {
    Bitmap bitmap(FreeImage_AllocateT(type, SIDE, SIDE));
    const unsigned channels = getChannels(type);
    for (unsigned y = 0; y < SIDE; ++y) {
        for (unsigned i = 0; i < SIDE * channels; ++i) {
            wordsAt(bitmap, y)[i] = static_cast<WORD>(y * SIDE + i / channels + 4099 * (i % channels));
        }
    }
    return bitmap;
}

double light(WORD code) {
    return std::pow(code / 65535.0, 2.2);
}
double code(double light) {
    return 65535.0 * std::pow(std::min(light, 1.0), 1.0 / 2.2);
}

/// Runs the program, expecting success and a text in its warning.
void warned(const Outcome& outcome, const std::string& words) {
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_NE(outcome.err.find(words), std::string::npos) << outcome.err;
}

/// The samples that ImageMagick finds in a file, in the machine's byte order.
std::string samplesFromMagick(const std::string& name, const std::string& channels) {
    const Outcome outcome = runCommand(
        {MAGICK, "-define", "psd:alpha-unblend=off", name, "-depth", "16", "-endian", "LSB", channels + ":-"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    return outcome.out;
}

std::string getSamples(const Bitmap& bitmap) {
    std::string samples;
    for (unsigned y = 0; y < FreeImage_GetHeight(bitmap.get()); ++y) {
        samples.append(reinterpret_cast<const char*>(wordsAt(bitmap, y)), FreeImage_GetLine(bitmap.get()));
    }
    return samples;
}

class DeepLosslessTest : public ProgramTest, public ::testing::WithParamInterface<Deep> {};

} // namespace

TEST_P(DeepLosslessTest, NeutralKeepsAllCodes) {
    const auto& [type, extension] = GetParam();
    const std::string in = at(std::string("in.") + extension);
    const std::string out = at(std::string("out.") + extension);
    const bool needsFlag = std::strcmp(extension, "jp2") == 0 || std::strcmp(extension, "j2k") == 0;
    writePicture(in, allCodes(type), needsFlag ? 1 : 0); // 1 is a compression without loss
    succeed({"apply", in, "-o", out});
    EXPECT_TRUE(isIdentical(readPicture(out), allCodes(type)));
}

TEST_P(DeepLosslessTest, AdjustmentsAreAsFineAsTheCodes) {
    const auto& [type, extension] = GetParam();
    const std::string in = at("in.png");
    const std::string out = at(std::string("out.") + extension);
    const Bitmap source = allCodes(type);
    writePicture(in, source);
    succeed({"apply", in, "-o", out, "--set", "exposure=-1"});
    const Bitmap result = readPicture(out);
    ASSERT_EQ(FreeImage_GetImageType(result.get()), type);
    const unsigned channels = getChannels(type);
    for (unsigned y = 0; y < SIDE; ++y) {
        for (unsigned i = 0; i < SIDE * channels; ++i) {
            const WORD before = wordsAt(source, y)[i];
            const WORD after = wordsAt(result, y)[i];
            if (i % channels == 3) {
                ASSERT_EQ(after, before);
            } else if (std::abs(after - code(0.5 * light(before))) > 0.51) {
                // Grading mixes channels in floats: beside a bright one, the blackest of another are not that fine.
                ASSERT_NEAR(light(after), 0.5 * light(before), 3e-7) << i << ", " << y;
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(EachFormat, DeepLosslessTest,
                         ::testing::Values(Deep{FIT_UINT16, "png"}, Deep{FIT_UINT16, "tif"}, Deep{FIT_UINT16, "pgm"},
                                           Deep{FIT_UINT16, "psd"}, Deep{FIT_UINT16, "jp2"}, Deep{FIT_RGB16, "png"},
                                           Deep{FIT_RGB16, "tif"}, Deep{FIT_RGB16, "ppm"}, Deep{FIT_RGB16, "psd"},
                                           Deep{FIT_RGB16, "jp2"}, Deep{FIT_RGB16, "j2k"}, Deep{FIT_RGBA16, "png"},
                                           Deep{FIT_RGBA16, "tif"}, Deep{FIT_RGBA16, "psd"}, Deep{FIT_RGBA16, "jp2"}),
                         [](const auto& test) {
                             return std::to_string(getChannels(test.param.type)) + "_" + test.param.extension;
                         });

TEST_F(DepthTest, AnotherProgramFindsTheSameCodes) {
    const struct {
        FREE_IMAGE_TYPE type;
        const char* channels;
    } kinds[] = {{FIT_UINT16, "gray"}, {FIT_RGB16, "rgb"}, {FIT_RGBA16, "rgba"}};
    for (const auto& [type, channels] : kinds) {
        writePicture(at("in.png"), allCodes(type));
        for (const std::string name : {"out.png", "out.tif", "out.psd"}) {
            if (name == "out.psd" && type == FIT_RGBA16) {
                continue; // others take a fourth channel of these files for anything but alpha
            }
            succeed({"apply", at("in.png"), "-o", at(name)});
            EXPECT_TRUE(samplesFromMagick(at(name), channels) == getSamples(allCodes(type))) << name << ' ' << channels;
        }
    }
}

TEST_F(DepthTest, CodesOfAnotherProgramAreReadAsTheyAre) {
    for (const char* name : {"in.png", "in.tif", "in.psd", "in.ppm"}) {
        writeFile(at("in.rgb"), getSamples(allCodes(FIT_RGB16)));
        ASSERT_EQ(
            runCommand({MAGICK, "-size", "256x256", "-depth", "16", "-endian", "LSB", at("in.rgb"), at(name)}).exitCode,
            0);
        succeed({"apply", at(name), "-o", at("out.png")});
        EXPECT_TRUE(isIdentical(readPicture(at("out.png")), allCodes(FIT_RGB16))) << name;
    }
}

TEST_F(DepthTest, ExifToolFindsSixteenBits) {
    writePicture(at("in.png"), allCodes(FIT_RGB16));
    for (const auto& [name, tag, bits] :
         {std::tuple("out.png", "-BitDepth", "16\n"), std::tuple("out.tif", "-BitsPerSample", "16 16 16\n")}) {
        succeed({"apply", at("in.png"), "-o", at(name), "--set", "contrast=0.2"});
        EXPECT_EQ(runCommand({"exiftool", "-s3", tag, at(name)}).out, bits) << name;
    }
}

TEST_F(DepthTest, GreyWithAlphaBecomesColorOfTheSameDepth) {
    ASSERT_EQ(
        runCommand({MAGICK, "-size", "3x2", "xc:gray(30.003%)", "-colorspace", "gray", "-alpha", "set", "-channel", "A",
                    "-evaluate", "set", "25%", "+channel", "-depth", "16", "-define", "png:color-type=4", at("in.png")})
            .exitCode,
        0);
    succeed({"apply", at("in.png"), "-o", at("out.png")});
    const Bitmap out = readPicture(at("out.png"));
    ASSERT_EQ(FreeImage_GetImageType(out.get()), FIT_RGBA16);
    EXPECT_EQ(std::vector<WORD>(wordsAt(out, 0), wordsAt(out, 0) + 4), (std::vector<WORD>{19662, 19662, 19662, 16384}));
}

TEST_F(DepthTest, GreyStaysDeepInFormatsThatOnlyKnowColor) {
    writePicture(at("in.png"), allCodes(FIT_UINT16));
    succeed({"apply", at("in.png"), "-o", at("out.ppm")});
    const Bitmap out = readPicture(at("out.ppm"));
    ASSERT_EQ(FreeImage_GetImageType(out.get()), FIT_RGB16);
    for (unsigned i = 0; i < 3 * SIDE; ++i) {
        ASSERT_EQ(wordsAt(out, 77)[i], 77 * SIDE + i / 3);
    }
}

TEST_F(DepthTest, SixteenBitsAreCutToEightWhereThereAreNoMoreAndItSaysSo) {
    writePicture(at("in.png"), allCodes(FIT_RGB16));
    for (const char* name : {"out.bmp", "out.tga"}) {
        warned(zqxImg({"apply", at("in.png"), "-o", at(name)}),
               "warning: " + at(name) +
                   ": this format has 8 bits per channel, so the picture's 16 bits are reduced; choose .png or .tif to "
                   "keep 16 bits\n");
        const Bitmap out = readPicture(at(name));
        ASSERT_EQ(FreeImage_GetBPP(out.get()), 24U);
        for (unsigned x = 0; x < SIDE; ++x) {
            ASSERT_EQ(pixelAt(out, x, 200).r, static_cast<int>((200 * SIDE + x) / 257)) << x; // 65535 / 255 = 257
        }
    }
}

TEST_F(DepthTest, SixteenBitsBecomeLinearFloatsWithoutAWord) {
    writePicture(at("in.png"), allCodes(FIT_RGB16));
    for (const char* name : {"out.exr", "out.pfm"}) {
        succeed({"apply", at("in.png"), "-o", at(name)});
        const Bitmap out = readPicture(at(name));
        for (unsigned x = 0; x < SIDE; ++x) {
            ASSERT_NEAR(floatsAt(out, x, 200)[0], light(static_cast<WORD>(200 * SIDE + x)), 1e-7) << name;
        }
    }
}

TEST_F(DepthTest, FloatsAreRoundedToSixteenBitsWhereThereAreNoFloatsAndItSaysSo) {
    const Bitmap source(FreeImage_AllocateT(FIT_RGBF, 1, 1));
    *reinterpret_cast<FIRGBF*>(FreeImage_GetBits(source.get())) = {0.5F, 4.0F, -1.0F};
    writePicture(at("in.pfm"), source);
    warned(zqxImg({"apply", at("in.pfm"), "-o", at("out.png")}),
           "this format has 16 bits per channel, so values outside 0 to 1 are clipped and the rest is rounded; choose "
           ".exr or "
           ".tif to keep floats\n");
    const Bitmap out = readPicture(at("out.png"));
    ASSERT_EQ(FreeImage_GetImageType(out.get()), FIT_RGB16);
    const WORD* words = wordsAt(out, 0);
    EXPECT_EQ(std::vector<WORD>(words, words + 3),
              (std::vector<WORD>{47824, 65535, 0})); // 65535 * 0.5^(1 / 2.2) = 47823.51
}

TEST_F(DepthTest, RadianceSaysWhatItRoundsAndNothingOfWhatItHolds) {
    const Bitmap source(FreeImage_AllocateT(FIT_RGBF, 1, 1));
    auto* pixel = reinterpret_cast<FIRGBF*>(FreeImage_GetBits(source.get()));
    *pixel = {0.5F, 130.0F / 256.0F, 1.0F / 256.0F}; // multiples of the step that the largest one has
    writePicture(at("in.exr"), source, EXR_FLOAT);
    succeed({"apply", at("in.exr"), "-o", at("out.hdr")});
    EXPECT_EQ(0, std::memcmp(floatsAt(readPicture(at("out.hdr")), 0, 0), pixel, sizeof *pixel));
    pixel->green = 130.5F / 256.0F;
    writePicture(at("in.exr"), source, EXR_FLOAT);
    warned(zqxImg({"apply", at("in.exr"), "-o", at("out.hdr")}),
           "this format keeps only 8 significant bits of each value");
    pixel->green = -0.5F;
    writePicture(at("in.exr"), source, EXR_FLOAT);
    warned(zqxImg({"apply", at("in.exr"), "-o", at("out.hdr")}),
           "this format keeps only 8 significant bits of each value");
}

TEST_F(DepthTest, RadianceHasNothingBelowBlack) {
    const Bitmap source(FreeImage_AllocateT(FIT_RGBF, 2, 1));
    auto* pixels = reinterpret_cast<FIRGBF*>(FreeImage_GetBits(source.get()));
    pixels[0] = {0.5F, -0.25F, 0.25F};
    pixels[1] = {-1.0F, -2.0F, -3.0F};
    writePicture(at("in.pfm"), source);
    EXPECT_EQ(zqxImg({"apply", at("in.pfm"), "-o", at("out.hdr")}).exitCode, 0);
    const Bitmap out = readPicture(at("out.hdr"));
    const float* values = floatsAt(out, 0, 0);
    EXPECT_EQ(std::vector<float>(values, values + 6), (std::vector<float>{0.5F, 0.0F, 0.25F, 0.0F, 0.0F, 0.0F}));
}

TEST_F(DepthTest, LostTransparencyOfSixteenBitsIsTold) {
    writePicture(at("in.png"), allCodes(FIT_RGBA16));
    warned(zqxImg({"apply", at("in.png"), "-o", at("out.ppm")}),
           "this format has no transparency, so the picture becomes opaque; choose .png or .tif to keep it\n");
    EXPECT_EQ(FreeImage_GetImageType(readPicture(at("out.ppm")).get()), FIT_RGB16);
}

TEST_F(DepthTest, BeforeAfterHasTheSameDepth) {
    writePicture(at("in.png"), allCodes(FIT_RGB16));
    succeed({"apply", at("in.png"), "-o", at("out.png"), "--set", "exposure=-1", "--before-after", at("both.tif")});
    const Bitmap both = readPicture(at("both.tif"));
    const Bitmap out = readPicture(at("out.png"));
    ASSERT_EQ(FreeImage_GetImageType(both.get()), FIT_RGB16);
    const Bitmap source = allCodes(FIT_RGB16);
    for (unsigned x = 0; x < SIDE; ++x) {
        const WORD before = wordsAt(source, 90)[3 * x];
        const WORD expected = x < 127 ? before : x < 129 ? WORD{65535} : wordsAt(out, 90)[3 * x];
        ASSERT_EQ(wordsAt(both, 90)[3 * x], expected) << x;
    }
}

TEST_F(DepthTest, ProfileOfSixteenBitsStaysWithEncodedPixelsOnly) {
    const Bitmap source = allCodes(FIT_RGB16);
    std::string profile(200, '\0');
    profile[3] = '\xC8'; // its size
    profile.replace(16, 4, "RGB ");
    profile.replace(36, 4, "acsp");
    FreeImage_CreateICCProfile(source.get(), profile.data(), static_cast<long>(profile.size()));
    writePicture(at("in.tif"), source);
    succeed({"apply", at("in.tif"), "-o", at("out.tif")});
    EXPECT_EQ(FreeImage_GetICCProfile(readPicture(at("out.tif")).get())->size, profile.size());
    warned(zqxImg({"apply", at("in.tif"), "-o", at("out.exr")}), "cannot store a colour profile");
}

TEST_F(DepthTest, HalfFloatsBecomeFloatsOfTheSameValue) {
    const Bitmap source = fillSamples(FIT_RGBF, 96, 20, 10);
    writePicture(at("in.exr"), source, 0); // rounds to halves
    succeed({"apply", at("in.exr"), "-o", at("out.exr")});
    EXPECT_TRUE(isIdentical(readPicture(at("in.exr")), readPicture(at("out.exr"))));
}

TEST_F(DepthTest, TiffKindsThatWouldBeMisreadAreRefused) {
    const std::vector<std::string> grey = {"convert-im6.q16hdri", "-size", "3x2",       "xc:gray(30%)",
                                           "-colorspace",         "gray",  "-compress", "none"};
    const auto write = [&](const std::vector<std::string>& options) {
        std::vector<std::string> command = grey;
        command.insert(command.end(), options.begin(), options.end());
        command.push_back(at("in.tif"));
        runCommand(command); // complains about a tag of its own in files of floats, and writes them
    };
    write({"-alpha", "set", "-channel", "A", "-evaluate", "set", "25%", "+channel", "-depth", "16"});
    fail(1, {"apply", at("in.tif"), "-o", at("out.png")}, "is 16-bit grey with transparency");
    write({"-depth", "16", "-define", "quantum:format=floating-point"});
    fail(1, {"apply", at("in.tif"), "-o", at("out.png")}, "is grey in half floats");
    write({"-alpha", "set", "-channel", "A", "-evaluate", "set", "25%", "+channel", "-depth", "8"});
    warned(zqxImg({"apply", at("in.tif"), "-o", at("out.png")}), "is grey with transparency");
}

} // namespace zqx::img::test
