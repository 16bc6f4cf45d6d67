// Files that end early, are damaged, or cannot be read to their end: each is refused for what it is.
#include <filesystem>

#include "zqx/pictures/Diagnostics.h"
#include "zqx/pictures/codecs/Decode.h"

#include <cli/Pictures.h>
#include <support/DirectoryTest.h>
#include <support/Process.h>

namespace zqx::pictures {

namespace {

template <std::size_t N>
std::string raw(const char (&text)[N]) {
    return {text, N - 1};
}

std::string gHeard;

void DLL_CALLCONV hear(FREE_IMAGE_FORMAT /*format*/, const char* message) {
    gHeard += message;
}

class DamagedPictureTest : public img::test::DirectoryTest {
protected:
    /// The error of decoding a file; empty where it is decoded.
    std::string getError(const std::string& name) const {
        const WarningListener silence([](const std::string&) {});
        try {
            readPicture(at(name));
            return "";
        } catch (const Error& error) {
            return error.what();
        }
    }

    /// Expects a whole file to be read and every shorter one to be refused, down to a part of it.
    void expectCutsToBeNoticed(const std::string& name, std::size_t shortest) const {
        const std::string whole = img::test::readFile(at(name));
        ASSERT_EQ(getError(name), "");
        for (std::size_t size = whole.size() - 1; size >= shortest; size -= std::max<std::size_t>(1, size / 7)) {
            img::test::writeFile(at(name), whole.substr(0, size));
            const std::string error = getError(name);
            EXPECT_NE(error, "") << name << ": " << size << " of " << whole.size();
        }
    }
};

img::test::Bitmap indexed() {
    const auto color = [](unsigned i) { return img::test::Rgba{static_cast<int>(i), 0, static_cast<int>(255 - i)}; };
    return img::test::paintIndexed(61, 37, 8, color, [](unsigned x, unsigned y) { return (x * 7 + y * 13) % 256; });
}

/// Runs of two pixels, in one plane of bytes with a palette behind it.
std::string pcxFile(unsigned width, unsigned height) {
    std::string file = raw("\x0A\5\1\x08\0\0\0\0");
    file += {static_cast<char>(width - 1), '\0', static_cast<char>(height - 1), '\0'};
    file.resize(65, '\0');
    file += {'\1', static_cast<char>(width), '\0', '\1'};
    file.resize(128, '\0');
    for (unsigned i = 0; i < width / 2 * height; ++i) {
        file += {'\xC2', static_cast<char>(i % 200)};
    }
    file.push_back('\x0C');
    for (int i = 0; i < 256; ++i) {
        file += {static_cast<char>(i), static_cast<char>(i), static_cast<char>(i)};
    }
    return file;
}

std::string ddsFile(unsigned side) {
    std::string file = raw("DDS \x7C\0\0\0\x07\x10\0\0");
    file += {static_cast<char>(side), '\0', '\0', '\0', static_cast<char>(side), '\0', '\0', '\0'};
    file.resize(76, '\0');
    file += raw("\x20\0\0\0\4\0\0\0DXT1");
    file.resize(108, '\0');
    file += raw("\0\x10\0\0");
    file.resize(128, '\0');
    return file + std::string(side * side / 2, '\x5A');
}

} // namespace

TEST_F(DamagedPictureTest, TargaThatEndsEarly) {
    img::test::writePicture(at("a.tga"), img::test::paint(61, 37, 24, img::test::motley));
    constexpr std::size_t PIXEL_END = 18 + 61 * 37 * 3; // a footer follows, which nobody needs
    img::test::writeFile(at("a.tga"), img::test::readFile(at("a.tga")).substr(0, PIXEL_END));
    expectCutsToBeNoticed("a.tga", 19 + 61 * 3);
    img::test::writePicture(at("b.tga"), indexed(), TARGA_SAVE_RLE);
    const std::string whole = img::test::readFile(at("b.tga"));
    img::test::writeFile(at("b.tga"), whole.substr(0, whole.size() / 2));
    EXPECT_NE(getError("b.tga").find("is cut short"), std::string::npos) << getError("b.tga");
}

TEST_F(DamagedPictureTest, FloatTiffThatEndsEarly) {
    img::test::writePicture(at("a.tif"), img::test::fillSamples(FIT_RGBF, 96, 61, 37), TIFF_NONE);
    ASSERT_EQ(getError("a.tif"), "");
    // Its directory lies behind the pixels: one that lies before them is what cutting leaves.
    const std::string pixels(4 * 4 * 4, '\1');
    const std::string tiff = raw("II*\0\x08\0\0\0\x09\0"
                                 "\0\1\3\0\1\0\0\0\4\0\0\0"
                                 "\1\1\3\0\1\0\0\0\4\0\0\0"
                                 "\2\1\3\0\1\0\0\0\x20\0\0\0"
                                 "\3\1\3\0\1\0\0\0\1\0\0\0"
                                 "\6\1\3\0\1\0\0\0\1\0\0\0"
                                 "\x11\1\4\0\1\0\0\0\x7A\0\0\0"
                                 "\x16\1\3\0\1\0\0\0\4\0\0\0"
                                 "\x17\1\4\0\1\0\0\0\x40\0\0\0"
                                 "\x53\1\3\0\1\0\0\0\3\0\0\0"
                                 "\0\0\0\0");
    ASSERT_EQ(tiff.size(), 0x7AU);
    img::test::writeFile(at("b.tif"), tiff + pixels);
    expectCutsToBeNoticed("b.tif", tiff.size() + 4);
}

TEST_F(DamagedPictureTest, GifThatEndsEarlyOrIsDamaged) {
    img::test::writePicture(at("a.gif"), indexed());
    const std::string whole = img::test::readFile(at("a.gif"));
    ASSERT_EQ(getError("a.gif"), "");
    for (const std::size_t part : {2, 3, 4}) {
        img::test::writeFile(at("a.gif"), whole.substr(0, whole.size() - whole.size() / part));
        EXPECT_NE(getError("a.gif"), "") << part;
    }
    std::string damaged = whole;
    for (std::size_t i = whole.size() / 2; i < whole.size() / 2 + 60; ++i) {
        damaged[i] = '\xFF';
    }
    img::test::writeFile(at("a.gif"), damaged);
    EXPECT_NE(getError("a.gif"), "");
}

TEST_F(DamagedPictureTest, InterlacedAndLargeGifsAreComplete) {
    img::test::writePicture(at("a.gif"), indexed(), 0);
    EXPECT_EQ(getError("a.gif"), "");
    const auto gray = [](unsigned i) {
        return img::test::Rgba{static_cast<int>(i), static_cast<int>(i), static_cast<int>(i)};
    };
    const auto noise = [](unsigned x, unsigned y) { return (x * 2654435761U ^ y * 40503U) >> 7U & 255U; };
    img::test::writePicture(at("b.gif"), img::test::paintIndexed(400, 300, 8, gray, noise)); // the code table overflows
    EXPECT_EQ(getError("b.gif"), "");
}

TEST_F(DamagedPictureTest, IcoAndWbmpThatEndEarly) {
    img::test::writePicture(at("a.ico"), img::test::paint(32, 32, 32, img::test::motley));
    expectCutsToBeNoticed("a.ico", 200);
    const auto level = [](unsigned i) { return i != 0 ? img::test::Rgba{255, 255, 255} : img::test::Rgba{}; };
    img::test::writePicture(
        at("a.wbmp"), img::test::paintIndexed(137, 21, 1, level, [](unsigned x, unsigned y) { return (x + y) % 2; }));
    expectCutsToBeNoticed("a.wbmp", 30);
}

TEST_F(DamagedPictureTest, PcxThatEndsEarly) {
    img::test::writeFile(at("a.pcx"), pcxFile(40, 30));
    ASSERT_EQ(getError("a.pcx"), "");
    const std::string whole = img::test::readFile(at("a.pcx"));
    img::test::writeFile(at("a.pcx"), whole.substr(0, 128 + 2 * 20 * 15));
    EXPECT_NE(getError("a.pcx").find("is cut short"), std::string::npos) << getError("a.pcx");
}

TEST_F(DamagedPictureTest, DdsThatEndsEarly) {
    img::test::writeFile(at("a.dds"), ddsFile(32));
    expectCutsToBeNoticed("a.dds", 140);
}

#if defined(__linux__)
TEST_F(DamagedPictureTest, AFailingDiskIsNotCalledDamage) {
    std::filesystem::create_symlink("/proc/self/mem", at("a.png")); // of which the first bytes cannot be read
    EXPECT_NE(getError("a.png").find("cannot be read (Input/output error)"), std::string::npos) << getError("a.png");
}
#endif

TEST_F(DamagedPictureTest, ReplacingAnAnimationByItsFirstFrameIsRefused) {
    const std::string frame = raw(",\0\0\0\0\1\0\1\0\0\2\2\x44\1\0");
    img::test::writeFile(at("a.gif"), raw("GIF89a\1\0\1\0\x80\0\0\1\2\3\4\5\6") + frame + frame + ";");
    EXPECT_THROW(checkReplacement(PictureFile(at("a.gif"), {}), at("a.gif")), Error);
    std::filesystem::create_symlink(at("a.gif"), at("link.gif"));
    EXPECT_THROW(checkReplacement(PictureFile(at("a.gif"), {}), at("link.gif")), Error);
    EXPECT_NO_THROW(checkReplacement(PictureFile(at("a.gif"), {}), at("other.gif")));
    img::test::writePicture(at("b.gif"), indexed());
    EXPECT_NO_THROW(checkReplacement(PictureFile(at("b.gif"), {}), at("b.gif")));
    std::string warnings;
    const WarningListener listener([&](const std::string& line) { warnings += line; });
    readPicture(at("a.gif"));
    EXPECT_NE(warnings.find("holds several pictures, of which only the first is used"), std::string::npos) << warnings;
}

TEST(WritableFormatsTest, JpegXrIsNotAmongThem) {
    EXPECT_TRUE(canRead(FileFormat::JXR) || !canWrite(FileFormat::JXR));
    EXPECT_FALSE(canWrite(FileFormat::JXR));
    EXPECT_THROW(outputFormat("a.jxr"), UsageError);
}

TEST_F(DamagedPictureTest, MessageFunctionOfTheProgramStays) {
    img::test::writePicture(at("a.png"), indexed());
    img::test::writeFile(at("a.png"), img::test::readFile(at("a.png")).substr(0, 60));
    FreeImage_SetOutputMessage(hear);
    gHeard.clear();
    const std::string error = getError("a.png");
    EXPECT_NE(gHeard, "");
    EXPECT_NE(error.find(gHeard), std::string::npos) << error;
    gHeard.clear();
    EXPECT_EQ(FreeImage_Load(FIF_PNG, at("a.png").c_str(), 0), nullptr);
    EXPECT_NE(gHeard, "");
    FreeImage_SetOutputMessage(nullptr);
}

} // namespace zqx::pictures
