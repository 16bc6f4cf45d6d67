// Metadata from input to output, written and read by ExifTool.
#include <algorithm>

#include "cli/Exiftool.h"
#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace {

using Strings = std::vector<std::string>;

constexpr unsigned WIDTH = 96;
constexpr unsigned HEIGHT = 64;

const Strings EACH_FORMAT{"jpg", "png", "tif", "webp", "jp2", "psd"};

/// One word of every kind of metadata, and one of a place.
const Strings TAGS{"EXIF:Make", "EXIF:DateTimeOriginal", "GPS:GPSLatitude", "XMP-dc:Title", "IPTC:City"};
const Strings VALUES{"Tester", "2024:05:06 07:08:09", "48.5", "A title", "Example"};

Strings assignments() {
    return {"-EXIF:Make=Tester",      "-EXIF:DateTimeOriginal=2024:05:06 07:08:09",
            "-GPS:GPSLatitude=48.5",  "-GPS:GPSLatitudeRef=N",
            "-GPS:GPSLongitude=9.25", "-GPS:GPSLongitudeRef=E",
            "-XMP-dc:Title=A title",  "-IPTC:City=Example"};
}

/// A profile as ICC.1 wants it: a header and one tag, whose content does not compress.
std::string colorProfile(std::size_t size) {
    std::string profile(size, '\0');
    const auto setNumber = [&](std::size_t offset, std::size_t value) {
        for (std::size_t i = 0; i < 4; ++i) {
            profile[offset + i] = static_cast<char>(value >> (24 - 8 * i));
        }
    };
    setNumber(0, size);
    profile[8] = 2; // version
    profile.replace(12, 12, "mntrRGB XYZ ");
    profile.replace(36, 4, "acsp");
    setNumber(68, 0xF6D6); // D50, as all profiles
    setNumber(72, 0x10000);
    setNumber(76, 0xD32D);
    setNumber(128, 1);
    profile.replace(132, 4, "test");
    setNumber(136, 144);
    setNumber(140, size - 144);
    unsigned state = 1;
    for (std::size_t i = 144; i < size; ++i) {
        state = state * 1664525U + 1013904223U;
        profile[i] = static_cast<char>(state >> 24);
    }
    return profile;
}

void setComment(const Bitmap& bitmap, const char* keyword, const std::string& text) {
    FITAG* tag = FreeImage_CreateTag();
    FreeImage_SetTagKey(tag, keyword);
    FreeImage_SetTagType(tag, FIDT_ASCII);
    FreeImage_SetTagLength(tag, static_cast<DWORD>(text.size() + 1));
    FreeImage_SetTagCount(tag, static_cast<DWORD>(text.size() + 1));
    FreeImage_SetTagValue(tag, text.c_str());
    FreeImage_SetMetadata(FIMD_COMMENTS, bitmap.get(), keyword, tag);
    FreeImage_DeleteTag(tag);
}

class MetadataTest : public ProgramTest, public ::testing::WithParamInterface<std::string> {
protected:
    std::string plainPicture(const std::string& extension) const {
        const std::string name = at("in." + extension);
        writePicture(name, paint(WIDTH, HEIGHT, 24, motley));
        return name;
    }

    /// A picture with a word in every kind of metadata that its format has.
    std::string taggedPicture(const std::string& extension) const {
        const std::string name = plainPicture(extension);
        writeTags(name, assignments());
        return name;
    }

    /// Runs the program and answers what it warned of.
    static std::string getWarnings(const Strings& arguments) {
        const Outcome outcome = zqxImg(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        return outcome.err;
    }
};

} // namespace

TEST_P(MetadataTest, SurvivesIntoEachFormat) {
    const std::string in = taggedPicture(GetParam());
    for (const std::string& extension : EACH_FORMAT) {
        const std::string out = at("out." + extension);
        const Outcome outcome = zqxImg({"apply", in, "-o", out, "--set", "exposure=0.5"});
        EXPECT_EQ(outcome.exitCode, 0);
        Strings expected = VALUES;
        if (GetParam() == "webp" || extension == "webp") {
            expected.back() = "-";
        }
        EXPECT_EQ(getTags(out, TAGS), expected) << extension;
        const std::string warning = "zqx-img: warning: " + out + ": this format cannot hold IPTC, which is left out\n";
        EXPECT_EQ(outcome.err, extension == "webp" && GetParam() != "webp" ? warning : "") << extension;
        EXPECT_EQ(FreeImage_GetWidth(readPicture(out).get()), WIDTH) << extension;
    }
}

INSTANTIATE_TEST_SUITE_P(EachFormat, MetadataTest, ::testing::ValuesIn(EACH_FORMAT),
                         [](const auto& test) { return test.param; });

TEST_F(MetadataTest, MetadataDoesNotTouchPixels) {
    const struct {
        Bitmap bitmap;
        Strings extensions;
    } pictures[] = {{paint(29, 14, 24, motley), {"png", "tif", "psd"}},
                    {paint(29, 14, 32, motley), {"png", "tif", "psd"}},
                    {fillSamples(FIT_RGBF, 96, 29, 14), {"tif"}},
                    {fillSamples(FIT_RGBAF, 128, 29, 14), {"tif"}}};
    for (const auto& [bitmap, extensions] : pictures) {
        for (const std::string& extension : extensions) {
            const std::string in = at("in." + extension);
            const std::string out = at("out." + extension);
            writePicture(in, bitmap);
            writeTags(in, assignments());
            succeed({"apply", in, "-o", out});
            EXPECT_EQ(getTags(out, TAGS), VALUES) << extension;
            EXPECT_TRUE(isIdentical(readPicture(out), bitmap)) << extension << ' ' << FreeImage_GetBPP(bitmap.get());
        }
    }
}

TEST_F(MetadataTest, WebpKeepsAlphaBesideMetadata) {
    writePicture(at("in.png"), paint(16, 16, 32, [](unsigned x, unsigned) {
                     return Rgba{200, 100, 50, x < 8 ? 255 : 0};
                 }));
    writeTags(at("in.png"), {"-EXIF:Make=Tester", "-XMP-dc:Title=A title"});
    succeed({"apply", at("in.png"), "-o", at("out.webp")});
    EXPECT_EQ(getTags(at("out.webp"), {"EXIF:Make", "XMP-dc:Title"}), (Strings{"Tester", "A title"}));
    const Bitmap out = readPicture(at("out.webp"));
    ASSERT_EQ(FreeImage_GetBPP(out.get()), 32U);
    EXPECT_EQ(pixelAt(out, 2, 2).a, 255);
    EXPECT_EQ(pixelAt(out, 12, 12).a, 0);
}

TEST_F(MetadataTest, WhatAFormatCannotHoldIsToldOnce) {
    const std::string in = taggedPicture("jpg");
    EXPECT_EQ(getWarnings({"apply", in, "-o", at("out.bmp")}),
              "zqx-img: warning: " + at("out.bmp") + ": this format cannot hold Exif, IPTC, XMP, which are left out\n");
}

TEST_F(MetadataTest, ExifOfAnOrientationOnlyIsNoLoss) {
    writeOrientedJpeg(at("in.jpg"), 40, 20, 6);
    succeed({"apply", at("in.jpg"), "-o", at("out.bmp")});
}

TEST_F(MetadataTest, BaselineTagsOfTiffAreNoExif) {
    succeed({"apply", plainPicture("tif"), "-o", at("out.png")});
    EXPECT_EQ(getTags(at("out.png"), {"IFD0:Compression", "IFD0:XResolution"}), (Strings{"-", "-"}));
    succeed({"apply", at("in.tif"), "-o", at("out.bmp")});
}

TEST_F(MetadataTest, StructureOfTheSourceStaysBehind) {
    const std::string in = taggedPicture("tif");
    writeTags(in, {"-IFD0:DNGVersion=1 4 0 0", "-IFD0:SubfileType=1", "-IFD0:Artist=A maker"});
    const Strings structure{"IFD0:DNGVersion", "IFD0:StripOffsets", "IFD0:Compression", "IFD0:ImageWidth",
                            "IFD0:SubfileType"};
    succeed({"apply", in, "-o", at("out.jpg")});
    EXPECT_EQ(getTags(at("out.jpg"), structure), (Strings{"-", "-", "-", "-", "-"}));
    succeed({"apply", in, "-o", at("out.tif")});
    EXPECT_EQ(getTags(at("out.tif"), {"IFD0:DNGVersion", "IFD0:SubfileType", "IFD0:Artist"}),
              (Strings{"-", "0", "A maker"}));
}

TEST_F(MetadataTest, ThumbnailsAreDropped) {
    const std::string in = taggedPicture("jpg");
    writePicture(at("small.jpg"), paint(16, 16, 24, motley));
    writeTags(in, {"-ThumbnailImage<=" + at("small.jpg"), "-XMP-xmp:ThumbnailFormat=JPEG", "-XMP-xmp:ThumbnailWidth=16",
                   "-XMP-xmp:ThumbnailImage=abcd"});
    ASSERT_EQ(bytesOfTag(in, "EXIF:ThumbnailImage"), readFile(at("small.jpg")));
    succeed({"apply", in, "-o", at("out.jpg")});
    EXPECT_EQ(getTags(at("out.jpg"), {"EXIF:ThumbnailOffset", "IFD1:Compression", "XMP-xmp:ThumbnailFormat"}),
              (Strings{"-", "-", "-"}));
    EXPECT_EQ(getTags(at("out.jpg"), TAGS), VALUES);
}

TEST_F(MetadataTest, ByteOrderStays) {
    const std::string in = plainPicture("jpg");
    writeTags(in, {"-ExifByteOrder=MM", "-EXIF:Make=Tester"});
    succeed({"apply", in, "-o", at("out.jpg")});
    EXPECT_EQ(getTag(at("out.jpg"), "File:ExifByteOrder"), "MM");
}

TEST_F(MetadataTest, ResolutionSurvivesBetweenFormats) {
    for (const char* from : {"jpg", "webp"}) {
        const std::string in = plainPicture(from);
        writeTags(in, {"-IFD0:XResolution=300", "-IFD0:YResolution=300", "-IFD0:ResolutionUnit=2"});
        succeed({"apply", in, "-o", at("out.tif")});
        EXPECT_EQ(getTags(at("out.tif"), {"IFD0:XResolution", "IFD0:ResolutionUnit"}), (Strings{"300", "2"})) << from;
        succeed({"apply", at("out.tif"), "-o", at("out.png")});
        EXPECT_EQ(getTag(at("out.png"), "PNG-pHYs:PixelsPerUnitX"), "11811") << from;
    }
}

TEST_F(MetadataTest, CommentsSurvive) {
    writeTags(plainPicture("png"), {"-PNG:Author=A maker"});
    succeed({"apply", at("in.png"), "-o", at("out.png")});
    EXPECT_EQ(getTag(at("out.png"), "PNG:Author"), "A maker");
    writeTags(plainPicture("jpg"), {"-File:Comment=A word"});
    succeed({"apply", at("in.jpg"), "-o", at("out.jpg")});
    EXPECT_EQ(getTag(at("out.jpg"), "File:Comment"), "A word");
}

TEST_F(MetadataTest, ExifInPngCommentsIsExif) {
    // "Exif", two zeros, and a little-endian TIFF directory with the orientation 6.
    const Bitmap source = paint(40, 20, 24, motley);
    setComment(source, "Raw profile type exif",
               "\nexif\n      32\n45786966000049492a00080000000100120103000100000006000000"
               "00000000\n");
    writePicture(at("in.png"), source);
    succeed({"apply", at("in.png"), "-o", at("out.png")});
    EXPECT_EQ(FreeImage_GetWidth(readPicture(at("out.png")).get()), 20U);
    const std::string all = runCommand({"exiftool", "-a", "-s3", "-n", "-Orientation", at("out.png")}).out;
    EXPECT_EQ(all, "1\n"); // and no second one that was copied as a comment
    succeed({"apply", at("in.png"), "-o", at("stripped.png"), "--strip", "exif"});
    EXPECT_EQ(getTag(at("stripped.png"), "EXIF:Orientation"), "-");
}

TEST_F(MetadataTest, StripLeavesOutWhatIsNamed) {
    const std::string in = taggedPicture("jpg");
    const struct {
        const char* classes;
        Strings expected;
    } cases[] = {{"exif", {"-", "-", "-", "A title", "Example"}},
                 {"xmp", {"Tester", "2024:05:06 07:08:09", "48.5", "-", "Example"}},
                 {"iptc", {"Tester", "2024:05:06 07:08:09", "48.5", "A title", "-"}},
                 {"exif,xmp", {"-", "-", "-", "-", "Example"}},
                 {"all", {"-", "-", "-", "-", "-"}}};
    for (const auto& [classes, expected] : cases) {
        succeed({"apply", "--strip", classes, in, "-o", at("out.jpg")});
        EXPECT_EQ(getTags(at("out.jpg"), TAGS), expected) << classes;
    }
}

TEST_F(MetadataTest, StrippedClassesAreNotMissed) {
    succeed({"apply", taggedPicture("jpg"), "-o", at("out.bmp"), "--strip", "all"});
}

TEST_F(MetadataTest, StripAllLeavesOutCommentsAndProfile) {
    writeTags(plainPicture("jpg"), {"-File:Comment=A word"});
    writeFile(at("profile.icc"), colorProfile(500));
    writeTags(at("in.jpg"), {"-ICC_Profile<=" + at("profile.icc")});
    succeed({"apply", at("in.jpg"), "-o", at("out.jpg"), "--strip", "all"});
    EXPECT_EQ(getTags(at("out.jpg"), {"File:Comment", "ICC_Profile:ProfileClass"}), (Strings{"-", "-"}));
}

TEST_F(MetadataTest, StrippedExifStillTurnsAndLeavesTheProfile) {
    const std::string in = at("in.jpg");
    writeOrientedJpeg(in, 40, 20, 6);
    const std::string profile = colorProfile(500);
    writeFile(at("profile.icc"), profile);
    writeTags(in, {"-ICC_Profile<=" + at("profile.icc"), "-EXIF:Make=Tester"});
    succeed({"apply", in, "-o", at("out.jpg"), "--strip", "exif"});
    EXPECT_EQ(FreeImage_GetWidth(readPicture(at("out.jpg")).get()), 20U);
    EXPECT_EQ(getTags(at("out.jpg"), {"EXIF:Make", "EXIF:Orientation"}), (Strings{"-", "-"}));
    EXPECT_TRUE(bytesOfTag(at("out.jpg"), "ICC_Profile") == profile);
}

TEST_F(MetadataTest, UnknownClassIsRefusedWithThoseThatExist) {
    fail(2, {"apply", ZQX_SAMPLE, "-o", at("out.png"), "--strip", "exif,gps"},
         "\"gps\" is not one of icc, exif, xmp, iptc, all");
}

TEST_F(MetadataTest, ProfileKeepsItsBytes) {
    const std::string profile = colorProfile(3000);
    writeFile(at("profile.icc"), profile);
    for (const char* extension : {"jpg", "png", "tif", "webp", "psd"}) {
        const std::string in = plainPicture(extension);
        writeTags(in, {"-ICC_Profile<=" + at("profile.icc")});
        const std::string out = at(std::string("out.") + extension);
        succeed({"apply", in, "-o", out});
        EXPECT_TRUE(bytesOfTag(out, "ICC_Profile") == profile) << extension;
    }
}

TEST_F(MetadataTest, ProfileLargerThanASegmentKeepsItsBytesBesideExif) {
    const std::string in = taggedPicture("jpg");
    const std::string profile = colorProfile(150000);
    writeFile(at("profile.icc"), profile);
    writeTags(in, {"-ICC_Profile<=" + at("profile.icc")});
    for (const char* extension : {"jpg", "png", "tif"}) {
        const std::string out = at(std::string("out.") + extension);
        succeed({"apply", in, "-o", out});
        EXPECT_TRUE(bytesOfTag(out, "ICC_Profile") == profile) << extension;
        EXPECT_EQ(getTags(out, TAGS), VALUES) << extension;
    }
}

TEST_F(MetadataTest, DamagedProfileIsLeftOutAloud) {
    std::string profile = colorProfile(500);
    profile[3] = 1; // another length than it has
    const Bitmap source = paint(WIDTH, HEIGHT, 24, motley);
    FreeImage_CreateICCProfile(source.get(), profile.data(), static_cast<long>(profile.size()));
    writePicture(at("in.tif"), source);
    EXPECT_EQ(getWarnings({"apply", at("in.tif"), "-o", at("out.png")}),
              "zqx-img: warning: " + at("out.png") + ": the colour profile of the source is damaged and is left out\n");
}

TEST_F(MetadataTest, XmpTooLargeForJpegIsLeftOutAloud) {
    const std::string in = taggedPicture("png");
    writeTags(in, {"-XMP-dc:Description=" + std::string(70000, 'x')});
    const std::string warnings = getWarnings({"apply", in, "-o", at("out.jpg")});
    EXPECT_NE(warnings.find(at("out.jpg") + ": XMP cannot be written ("), std::string::npos) << warnings;
    Strings expected = VALUES;
    expected[3] = "-";
    EXPECT_EQ(getTags(at("out.jpg"), TAGS), expected);
    succeed({"apply", in, "-o", at("out.tif")});
    EXPECT_EQ(getTags(at("out.tif"), TAGS), VALUES);
}

TEST_F(MetadataTest, DamagedExifIsSurvived) {
    const std::string in = at("in.jpg");
    writeOrientedJpeg(in, 40, 20, 6);
    const std::string file = readFile(in);
    const std::size_t exif = file.find("Exif");
    ASSERT_NE(exif, std::string::npos);
    for (std::size_t i = exif + 6; i < exif + 26; ++i) { // every byte of the header and of the first entry, in turn
        std::string damaged = file;
        damaged[i] = '\xFF';
        writeFile(at("damaged.jpg"), damaged);
        const Outcome outcome = zqxImg({"apply", at("damaged.jpg"), "-o", at("out.jpg")});
        EXPECT_EQ(outcome.exitCode, 0) << "byte " << i - exif << ": " << outcome.err;
    }
}

TEST_F(MetadataTest, DamagedExifOfPhotoshopFilesIsSurvived) {
    const std::string file = readFile(taggedPicture("psd"));
    const std::size_t exif = std::min(file.find(std::string("MM\0\x2A", 4)), file.find(std::string("II\x2A\0", 4)));
    ASSERT_NE(exif, std::string::npos);
    for (std::size_t i = exif; i < exif + 20; ++i) {
        std::string damaged = file;
        damaged[i] = '\xFF';
        writeFile(at("damaged.psd"), damaged);
        const Outcome outcome = zqxImg({"apply", at("damaged.psd"), "-o", at("out.png")});
        EXPECT_EQ(outcome.exitCode, 0) << "byte " << i - exif << ": " << outcome.err;
    }
}

TEST_F(MetadataTest, ExifThatIsNoneIsToldAndLeftOut) {
    std::string file = readFile(taggedPicture("jpg"));
    file.replace(file.find("Exif") + 6, 2, "??");
    writeFile(at("damaged.jpg"), file);
    const std::string warnings = getWarnings({"apply", at("damaged.jpg"), "-o", at("out.jpg")});
    EXPECT_NE(warnings.find(at("damaged.jpg") + ": not all of its metadata can be read ("), std::string::npos)
        << warnings;
    EXPECT_EQ(getTag(at("out.jpg"), "EXIF:Make"), "-");
}

TEST_F(MetadataTest, XmpThatIsNoneIsToldAndLeftOut) {
    std::string file = readFile(taggedPicture("jpg"));
    file.replace(file.find("<x:xmpmeta") + 1, 2, "<<");
    writeFile(at("damaged.jpg"), file);
    EXPECT_EQ(getWarnings({"apply", at("damaged.jpg"), "-o", at("out.jpg")}),
              "zqx-img: warning: " + at("damaged.jpg") + ": its XMP cannot be read and is left out\n");
    Strings expected = VALUES;
    expected[3] = "-";
    EXPECT_EQ(getTags(at("out.jpg"), TAGS), expected);
}

TEST_F(MetadataTest, FileNamesThatLookLikeAddressesAreFiles) {
    std::filesystem::create_directories(at("data:"));
    const std::string in = at("data:/in.jpg");
    writePicture(in, paint(WIDTH, HEIGHT, 24, motley));
    writeTags(in, assignments());
    const Outcome outcome =
        runCommand({"sh", "-c", "cd \"$1\" && \"$0\" apply data://in.jpg -o out.jpg", ZQX_PROGRAM, at("")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(getTags(at("out.jpg"), TAGS), VALUES);
}

} // namespace zqx::img::test
