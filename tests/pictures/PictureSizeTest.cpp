// Sizes from the headers of picture files, honest and other ones.
#include <support/DirectoryTest.h>
#include <support/Process.h>

#include <cli/Pictures.h>

#include "zqx/pictures/bytes/PictureSize.h"
#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

namespace {

class PictureSizeTest : public img::test::DirectoryTest {
protected:
    std::optional<PictureSize> sizeOfFile(const std::string& name, FileFormat format) {
        InputFile file(at(name));
        return sizeFromHeader(file, format);
    }

    /// "12 x 34 x 8", or "none".
    std::string sizeOfBytes(const std::string& bytes, FileFormat format) {
        img::test::writeFile(at("file"), bytes);
        const std::optional<PictureSize> size = sizeOfFile("file", format);
        return size ? std::to_string(size->width) + " x " + std::to_string(size->height) + " x " +
                          std::to_string(size->bitsPerPixel)
                    : "none";
    }
};

/// A literal with zeros in it.
template <std::size_t N>
std::string raw(const char (&text)[N]) {
    return {text, N - 1};
}

const std::string GIF_SCREEN = raw("GIF89a\x01\0\x01\0\x80\0\0\1\2\3\4\5\6"); // 1 x 1, a table of two colours
const std::string GIF_FRAME = raw(",\0\0\0\0\x2C\x01\x0A\0\0");               // 300 x 10
const std::string CODESTREAM = raw("\xFF\x4F\xFF\x51\0\x2F\0\0\0\0\1\0\0\0\0\x80\0\0\0\5\0\0\0\3"
                                   "\0\0\0\1\0\0\0\1\0\0\0\0\0\0\0\0\0\3\7");

} // namespace

TEST_F(PictureSizeTest, FormatsThatFreeImageReadsTheHeaderOf) {
    const img::test::Bitmap color = img::test::paint(37, 21, 24, img::test::motley);
    const std::pair<const char*, FileFormat> formats[] = {{"a.png", FileFormat::PNG},    {"a.jpg", FileFormat::JPEG},
                                                          {"a.tif", FileFormat::TIFF},   {"a.bmp", FileFormat::BMP},
                                                          {"a.tga", FileFormat::TARGA},  {"a.psd", FileFormat::PSD},
                                                          {"a.ppm", FileFormat::PPMRAW}, {"a.webp", FileFormat::WEBP}};
    for (const auto& [name, format] : formats) {
        img::test::writePicture(at(name), color);
        const std::optional<PictureSize> size = sizeOfFile(name, format);
        ASSERT_TRUE(size) << name;
        EXPECT_EQ(size->width, 37U) << name;
        EXPECT_EQ(size->height, 21U) << name;
        EXPECT_EQ(size->bitsPerPixel, 24U) << name;
    }
}

TEST_F(PictureSizeTest, OwnReadersAgreeWithTheEncoders) {
    img::test::writePicture(at("a.jp2"), img::test::paint(137, 121, 24, img::test::motley));
    EXPECT_EQ(sizeOfFile("a.jp2", FileFormat::JP2)->width, 137U);
    EXPECT_EQ(sizeOfFile("a.jp2", FileFormat::JP2)->height, 121U);
    EXPECT_EQ(sizeOfFile("a.jp2", FileFormat::JP2)->bitsPerPixel, 24U);
    img::test::writePicture(at("a.j2k"), img::test::paint(137, 121, 24, img::test::motley));
    EXPECT_EQ(sizeOfFile("a.j2k", FileFormat::J2K)->width, 137U);
    const auto grey = [](unsigned i) { return img::test::Rgba{static_cast<int>(i), static_cast<int>(i), 0}; };
    const auto index = [](unsigned x, unsigned y) { return (x + y) % 2; };
    img::test::writePicture(at("a.gif"), img::test::paintIndexed(37, 21, 8, grey, index));
    EXPECT_EQ(sizeOfFile("a.gif", FileFormat::GIF)->width, 37U);
    EXPECT_EQ(sizeOfFile("a.gif", FileFormat::GIF)->height, 21U);
    img::test::writePicture(at("a.wbmp"), img::test::paintIndexed(
                                              137, 21, 1,
                                              [](unsigned i) {
                                                  const int level = i != 0 ? 255 : 0;
                                                  return img::test::Rgba{level, level, level};
                                              },
                                              index));
    EXPECT_EQ(sizeOfFile("a.wbmp", FileFormat::WBMP)->width, 137U);
    EXPECT_EQ(sizeOfFile("a.wbmp", FileFormat::WBMP)->height, 21U);
}

TEST_F(PictureSizeTest, GifIsAsLargeAsItsFrameAndNotItsScreen) {
    EXPECT_EQ(sizeOfBytes(GIF_SCREEN + GIF_FRAME, FileFormat::GIF), "300 x 10 x 8");
    const std::string comment = raw("!\xFE\x03"
                                    "abc\x02"
                                    "de\0");
    EXPECT_EQ(sizeOfBytes(GIF_SCREEN + comment + GIF_FRAME, FileFormat::GIF), "300 x 10 x 8");
}

TEST_F(PictureSizeTest, GifThatNeverComesToAFrameHasNoSize) {
    EXPECT_EQ(sizeOfBytes(GIF_SCREEN, FileFormat::GIF), "none");
    EXPECT_EQ(sizeOfBytes(GIF_SCREEN + ";" + GIF_FRAME, FileFormat::GIF), "none");
    EXPECT_EQ(sizeOfBytes(GIF_SCREEN + "!\xFE" + std::string(1 << 20U, '\1'), FileFormat::GIF), "none");
    std::string extensions;
    for (int i = 0; i < 100'000; ++i) {
        extensions += raw("!\xFE\0");
    }
    EXPECT_EQ(sizeOfBytes(GIF_SCREEN + extensions, FileFormat::GIF), "none");
}

TEST_F(PictureSizeTest, DdsAndSgi) {
    EXPECT_EQ(sizeOfBytes(raw("DDS \x7C\0\0\0\7\x10\0\0\x20\3\0\0\x10\4\0\0"), FileFormat::DDS), "1040 x 800 x 32");
    EXPECT_EQ(sizeOfBytes(raw("\x01\xDA\1\1\0\3\x01\x2C\0\x64\0\3"), FileFormat::SGI), "300 x 100 x 24");
}

TEST_F(PictureSizeTest, CodestreamIsAsLargeAsItsGridLessTheOffset) {
    EXPECT_EQ(sizeOfBytes(CODESTREAM, FileFormat::J2K), "251 x 125 x 24");
    std::string inverted = CODESTREAM;
    inverted[16] = '\x7F'; // the left edge far to the right
    EXPECT_EQ(sizeOfBytes(inverted, FileFormat::J2K), "none");
}

TEST_F(PictureSizeTest, Jp2BoxesAreWalkedToTheCodestream) {
    const std::string signature = raw("\0\0\0\x0CjP  \r\n\x87\n");
    const std::string longBox = raw("\0\0\0\1free\0\0\0\0\0\0\0\x14....");
    EXPECT_EQ(sizeOfBytes(signature + longBox + raw("\0\0\0\0jp2c") + CODESTREAM, FileFormat::JP2), "251 x 125 x 24");
    EXPECT_EQ(sizeOfBytes(signature + raw("\0\0\0\4jp2h"), FileFormat::JP2), "none"); // shorter than itself
    EXPECT_EQ(sizeOfBytes(signature + raw("\0\0\0\1free\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFFxxxxxxxx"), FileFormat::JP2),
              "none");
}

TEST_F(PictureSizeTest, CutHeadersHaveNoSize) {
    const std::pair<std::string, FileFormat> headers[] = {
        {GIF_SCREEN + GIF_FRAME.substr(0, 9), FileFormat::GIF},
        {raw("DDS \x7C\0\0\0\7\x10\0\0\x20\3\0\0\x10\4\0\0"), FileFormat::DDS},
        {raw("\x01\xDA\1\1\0\3\x01\x2C\0\x64\0\3"), FileFormat::SGI},
        {CODESTREAM, FileFormat::J2K},
        {raw("\0\0\x81\x09\x15"), FileFormat::WBMP}};
    for (const auto& [bytes, format] : headers) {
        EXPECT_NE(sizeOfBytes(bytes, format), "none") << nameOf(format);
        for (std::size_t length = 0; length < bytes.size(); ++length) {
            EXPECT_EQ(sizeOfBytes(bytes.substr(0, length), format), "none") << nameOf(format) << ' ' << length;
        }
    }
}

TEST_F(PictureSizeTest, FormatsWithoutAHeaderThatCanBeReadAloneHaveNone) {
    img::test::writeFile(at("a.xbm"), "#define a_width 8\n#define a_height 1\nstatic char a_bits[] = {0x0F};\n");
    EXPECT_FALSE(sizeOfFile("a.xbm", FileFormat::XBM));
}

} // namespace zqx::pictures
