// What headers tell of pictures, for every format that is understood, and for files that lie.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "zqx/pictures/Diagnostics.h"
#include "zqx/pictures/Reader.h"
#include "zqx/pictures/bytes/Probe.h"
#include "zqx/pictures/codecs/freeimage/FreeImageDecoder.h"

#include <cli/Pictures.h>
#include <support/DirectoryTest.h>
#include <support/Process.h>

namespace zqx::pictures {

namespace {

constexpr unsigned WIDTH = 301;
constexpr unsigned HEIGHT = 47;

class ProbeTest : public img::test::DirectoryTest {
protected:
    Header getHeader(const std::string& name) const {
        InputFile file(at(name));
        return probe(file);
    }

    Header headerOfBytes(const std::string& bytes, FileFormat format) const {
        img::test::writeFile(at("file"), bytes);
        InputFile file(at("file"));
        return probeAs(file, format);
    }

    /// "12 x 34", or "none".
    std::string sizeOfBytes(const std::string& bytes, FileFormat format) const {
        const HeaderInfo info = headerOfBytes(bytes, format).info;
        return info.hasSize() ? std::to_string(info.width) + " x " + std::to_string(info.height) : "none";
    }

    void expectHeader(const std::string& name, unsigned channels, unsigned bits) const {
        const HeaderInfo info = getHeader(name).info;
        EXPECT_NE(info.format, FileFormat::UNKNOWN) << name;
        EXPECT_EQ(info.width, WIDTH) << name;
        EXPECT_EQ(info.height, HEIGHT) << name;
        EXPECT_EQ(info.channels, channels) << name;
        EXPECT_EQ(info.bitsPerChannel, bits) << name;
        EXPECT_FALSE(info.severalPictures) << name;
    }
};

/// A literal with zeros in it.
template <std::size_t N>
std::string raw(const char (&text)[N]) {
    return {text, N - 1};
}

std::string little(std::uint64_t value, int size) {
    std::string bytes;
    for (int i = 0; i < size; ++i) {
        bytes.push_back(static_cast<char>(value >> (8 * i) & 0xFFU));
    }
    return bytes;
}

/// An uncompressed OpenEXR file with one black pixel.
std::string exrFile(const std::vector<std::string>& channels) {
    const auto attribute = [](const std::string& name, const std::string& type, const std::string& value) {
        return name + '\0' + type + '\0' + little(value.size(), 4) + value;
    };
    const std::string one = little(0x3F800000, 4); // 1.0F
    const std::string zero(4, '\0');
    std::string list;
    for (const std::string& name : channels) {
        constexpr std::uint64_t FLOAT = 2;
        list += name + '\0' + little(FLOAT, 4) + zero + little(1, 4) + little(1, 4);
    }
    const std::string box(16, '\0');
    std::string file = raw("v/1\x01\2\0\0\0");
    file += attribute("channels", "chlist", list + '\0');
    file += attribute("compression", "compression", std::string(1, '\0'));
    file += attribute("dataWindow", "box2i", box);
    file += attribute("displayWindow", "box2i", box);
    file += attribute("lineOrder", "lineOrder", std::string(1, '\0'));
    file += attribute("pixelAspectRatio", "float", one);
    file += attribute("screenWindowCenter", "v2f", zero + zero);
    file += attribute("screenWindowWidth", "float", one);
    file.push_back('\0');
    file += little(file.size() + 8, 8); // where the only row begins
    return file + zero + little(4 * channels.size(), 4) + std::string(4 * channels.size(), '\0');
}

const std::string GIF_SCREEN = raw("GIF89a\x01\0\x01\0\x80\0\0\1\2\3\4\5\6"); // 1 x 1, a table of two colours
const std::string GIF_FRAME = raw(",\0\0\0\0\x2C\x01\x0A\0\0");               // 300 x 10
const std::string CODESTREAM = raw("\xFF\x4F\xFF\x51\0\x2F\0\0\0\0\1\0\0\0\0\x80\0\0\0\5\0\0\0\3"
                                   "\0\0\0\1\0\0\0\1\0\0\0\0\0\0\0\0\0\3\7");

} // namespace

TEST_F(ProbeTest, PicturesOfBytes) {
    const img::test::Bitmap picture = img::test::paint(WIDTH, HEIGHT, 24, img::test::motley);
    for (const char* name : {"a.png", "a.jpg", "a.tif", "a.bmp", "a.tga", "a.ppm", "a.jp2", "a.j2k", "a.psd"}) {
        img::test::writePicture(at(name), picture);
        expectHeader(name, 3, 8);
    }
}

TEST_F(ProbeTest, PicturesWithAlpha) {
    const img::test::Bitmap picture = img::test::paint(WIDTH, HEIGHT, 32, img::test::motley);
    for (const char* name : {"a.png", "a.tif", "a.bmp", "a.tga"}) {
        img::test::writePicture(at(name), picture);
        expectHeader(name, 4, 8);
    }
}

TEST_F(ProbeTest, EachKindOfWebp) {
    const img::test::Bitmap opaque = img::test::paint(WIDTH, HEIGHT, 24, img::test::motley);
    const img::test::Bitmap clear = img::test::paint(WIDTH, HEIGHT, 32, img::test::motley);
    img::test::writePicture(at("lossy.webp"), opaque);
    img::test::writePicture(at("alpha.webp"), clear);
    img::test::writePicture(at("lossless.webp"), opaque, WEBP_LOSSLESS);
    expectHeader("lossy.webp", 3, 8);
    expectHeader("alpha.webp", 4, 8);
    expectHeader("lossless.webp", 4, 8);
}

TEST_F(ProbeTest, PicturesOfSixteenBits) {
    const img::test::Bitmap picture = img::test::fillSamples(FIT_RGB16, 48, WIDTH, HEIGHT);
    for (const char* name : {"a.png", "a.tif", "a.ppm", "a.jp2"}) {
        img::test::writePicture(at(name), picture);
        expectHeader(name, 3, 16);
    }
}

TEST_F(ProbeTest, PicturesOfFloats) {
    const img::test::Bitmap picture = img::test::fillSamples(FIT_RGBF, 96, WIDTH, HEIGHT);
    for (const char* name : {"a.tif", "a.pfm", "a.hdr", "a.exr"}) {
        img::test::writePicture(at(name), picture);
        expectHeader(name, 3, 32);
    }
    img::test::writePicture(at("grey.exr"), img::test::fillSamples(FIT_FLOAT, 32, WIDTH, HEIGHT));
    expectHeader("grey.exr", 1, 32);
    img::test::writePicture(at("alpha.exr"), img::test::fillSamples(FIT_RGBAF, 128, WIDTH, HEIGHT));
    expectHeader("alpha.exr", 4, 32);
}

TEST_F(ProbeTest, GreyAndPalettes) {
    const auto grey = [](unsigned i) {
        return img::test::Rgba{static_cast<int>(i), static_cast<int>(i), static_cast<int>(i)};
    };
    const auto color = [](unsigned i) { return img::test::Rgba{static_cast<int>(i), 0, 0}; };
    const auto index = [](unsigned x, unsigned y) { return (x + y) % 256; };
    img::test::writePicture(at("grey.tif"), img::test::paintIndexed(WIDTH, HEIGHT, 8, grey, index));
    img::test::writePicture(at("grey.jpg"), img::test::paintIndexed(WIDTH, HEIGHT, 8, grey, index));
    img::test::writePicture(at("palette.tif"), img::test::paintIndexed(WIDTH, HEIGHT, 8, color, index));
    img::test::writePicture(at("palette.gif"), img::test::paintIndexed(WIDTH, HEIGHT, 8, color, index));
    expectHeader("grey.tif", 1, 8);
    expectHeader("grey.jpg", 1, 8);
    expectHeader("palette.tif", 3, 8);
    expectHeader("palette.gif", 4, 8);
}

TEST_F(ProbeTest, PortableMapWithComments) {
    img::test::writeFile(at("a.pgm"), "P5 # grey\n# another\n301\t47 # size\n65535\nxx");
    expectHeader("a.pgm", 1, 16);
}

TEST_F(ProbeTest, JpegWithLargeSegmentsInFront) {
    img::test::writePicture(at("a.jpg"), img::test::paint(WIDTH, HEIGHT, 24, img::test::motley));
    std::string file = img::test::readFile(at("a.jpg"));
    std::string segment("\xFF\xEF\xFF\xFF", 4); // 65535 bytes with its length
    segment.resize(2 + 65535, 'x');
    file.insert(2, segment + segment + segment);
    img::test::writeFile(at("a.jpg"), file);
    expectHeader("a.jpg", 3, 8);
}

TEST_F(ProbeTest, GifIsAsLargeAsItsFrameAndNotItsScreen) {
    EXPECT_EQ(sizeOfBytes(GIF_SCREEN + GIF_FRAME, FileFormat::GIF), "300 x 10");
    const std::string comment = raw("!\xFE\x03"
                                    "abc\x02"
                                    "de\0");
    EXPECT_EQ(sizeOfBytes(GIF_SCREEN + comment + GIF_FRAME, FileFormat::GIF), "300 x 10");
}

TEST_F(ProbeTest, GifThatNeverComesToAFrameHasNoSize) {
    EXPECT_EQ(sizeOfBytes(GIF_SCREEN, FileFormat::GIF), "none");
    EXPECT_EQ(sizeOfBytes(GIF_SCREEN + ";" + GIF_FRAME, FileFormat::GIF), "none");
    EXPECT_EQ(sizeOfBytes(GIF_SCREEN + "!\xFE" + std::string(1 << 20U, '\1'), FileFormat::GIF), "none");
    std::string extensions;
    for (int i = 0; i < 100'000; ++i) {
        extensions += raw("!\xFE\0");
    }
    EXPECT_EQ(sizeOfBytes(GIF_SCREEN + extensions, FileFormat::GIF), "none");
}

TEST_F(ProbeTest, DdsAndSgi) {
    EXPECT_EQ(sizeOfBytes(raw("DDS \x7C\0\0\0\7\x10\0\0\x20\3\0\0\x10\4\0\0"), FileFormat::DDS), "1040 x 800");
    EXPECT_EQ(sizeOfBytes(raw("\x01\xDA\1\1\0\3\x01\x2C\0\x64\0\3"), FileFormat::SGI), "300 x 100");
}

TEST_F(ProbeTest, CodestreamIsAsLargeAsItsGridLessTheOffset) {
    EXPECT_EQ(sizeOfBytes(CODESTREAM, FileFormat::J2K), "251 x 125");
    std::string inverted = CODESTREAM;
    inverted[16] = '\x7F'; // the left edge far to the right
    EXPECT_EQ(sizeOfBytes(inverted, FileFormat::J2K), "none");
}

TEST_F(ProbeTest, Jp2BoxesAreWalkedToTheCodestream) {
    const std::string signature = raw("\0\0\0\x0CjP  \r\n\x87\n");
    const std::string longBox = raw("\0\0\0\1free\0\0\0\0\0\0\0\x14....");
    EXPECT_EQ(sizeOfBytes(signature + longBox + raw("\0\0\0\0jp2c") + CODESTREAM, FileFormat::JP2), "251 x 125");
    EXPECT_EQ(sizeOfBytes(signature + raw("\0\0\0\4jp2h"), FileFormat::JP2), "none"); // shorter than itself
    EXPECT_EQ(sizeOfBytes(signature + raw("\0\0\0\1free\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFFxxxxxxxx"), FileFormat::JP2),
              "none");
}

TEST_F(ProbeTest, CutHeadersHaveNoSize) {
    const std::pair<std::string, FileFormat> headers[] = {
        {GIF_SCREEN + GIF_FRAME.substr(0, 9), FileFormat::GIF},
        {raw("DDS \x7C\0\0\0\7\x10\0\0\x20\3\0\0\x10\4\0\0"), FileFormat::DDS},
        {raw("\x01\xDA\1\1\0\3\x01\x2C\0\x64\0\3"), FileFormat::SGI},
        {CODESTREAM, FileFormat::J2K},
        {raw("\0\0\x81\x09\x15"), FileFormat::WBMP}};
    for (const auto& [bytes, format] : headers) {
        EXPECT_NE(sizeOfBytes(bytes, format), "none") << getName(format);
        for (std::size_t length = 0; length < bytes.size(); ++length) {
            EXPECT_EQ(sizeOfBytes(bytes.substr(0, length), format), "none") << getName(format) << ' ' << length;
        }
    }
}

TEST_F(ProbeTest, WhatIsNotUnderstoodSaysNothing) {
    img::test::writeFile(at("empty.png"), "");
    EXPECT_FALSE(getHeader("empty.png").info.hasSize());
    img::test::writeFile(at("text.png"), "no picture at all");
    EXPECT_FALSE(getHeader("text.png").info.hasSize());
    img::test::writeFile(at("short.png"), "\x89PNG\r\n\x1A\n");
    EXPECT_FALSE(getHeader("short.png").info.hasSize());
    img::test::writeFile(at("text.xyz"), "no picture at all");
    EXPECT_EQ(getHeader("text.xyz").info.format, FileFormat::UNKNOWN);
}

TEST_F(ProbeTest, ContentCountsForMoreThanTheName) {
    img::test::writePicture(at("a.png"), img::test::paint(WIDTH, HEIGHT, 24, img::test::motley));
    std::filesystem::rename(at("a.png"), at("a.jpg"));
    EXPECT_EQ(getHeader("a.jpg").info.format, FileFormat::PNG);
    EXPECT_EQ(getHeader("a.jpg").info.width, WIDTH);
}

/// A run of fill bytes costs no more than any other bytes, and a file that holds nothing else is given up.
TEST_F(ProbeTest, FillBytesOfJpegArePassedOver) {
    img::test::writePicture(at("a.jpg"), img::test::paint(WIDTH, HEIGHT, 24, img::test::motley));
    std::string file = img::test::readFile(at("a.jpg"));
    file.insert(2, std::string(3U << 20U, '\xFF'));
    img::test::writeFile(at("a.jpg"), file);
    expectHeader("a.jpg", 3, 8);
    EXPECT_EQ(sizeOfBytes("\xFF\xD8" + std::string(20U << 20U, '\xFF'), FileFormat::JPEG), "none");
}

/// What reading the header once more with FreeImage would take the decoding of all scans for.
TEST_F(ProbeTest, ProgressiveJpeg) {
    img::test::writePicture(at("a.jpg"), img::test::paint(WIDTH, HEIGHT, 24, img::test::motley), JPEG_PROGRESSIVE);
    expectHeader("a.jpg", 3, 8);
}

TEST_F(ProbeTest, OrientationOfJpegAndTiff) {
    for (const int orientation : {1, 3, 6, 8}) {
        img::test::writeOrientedJpeg(at("a.jpg"), 32, 16, orientation);
        EXPECT_EQ(getHeader("a.jpg").orientation, orientation);
    }
    const std::string tiff = raw("MM\0*\0\0\0\x08\0\1\1\x12\0\3\0\0\0\1\0\6\0\0\0\0\0\0");
    EXPECT_EQ(headerOfBytes(tiff, FileFormat::TIFF).orientation, 6);
}

TEST_F(ProbeTest, SeveralPicturesInOneFile) {
    EXPECT_FALSE(headerOfBytes(GIF_SCREEN + GIF_FRAME + raw("\0\2\1\0\0;"), FileFormat::GIF).info.severalPictures);
    EXPECT_TRUE(headerOfBytes(GIF_SCREEN + GIF_FRAME + raw("\0\2\1\0\0!\xF9\1\0\0") + GIF_FRAME, FileFormat::GIF)
                    .info.severalPictures);
    EXPECT_FALSE(headerOfBytes(raw("\0\0\1\0\1\0\x10\x10"), FileFormat::ICO).info.severalPictures);
    EXPECT_TRUE(headerOfBytes(raw("\0\0\1\0\2\0\x10\x10"), FileFormat::ICO).info.severalPictures);
    const std::string webp = raw("RIFF\x64\0\0\0WEBPVP8X\x0A\0\0\0");
    EXPECT_FALSE(headerOfBytes(webp + raw("\x10\0\0\0\4\0\0\4\0\0"), FileFormat::WEBP).info.severalPictures);
    EXPECT_TRUE(headerOfBytes(webp + raw("\x12\0\0\0\4\0\0\4\0\0"), FileFormat::WEBP).info.severalPictures);
    const std::string png = raw("\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\0\4\0\0\0\4\x08\2\0\0\0....");
    EXPECT_FALSE(headerOfBytes(png + raw("\0\0\0\0IDAT"), FileFormat::PNG).info.severalPictures);
    EXPECT_TRUE(
        headerOfBytes(png + raw("\0\0\0\x08") + raw("acTL\0\0\0\3\0\0\0\0"), FileFormat::PNG).info.severalPictures);
}

TEST_F(ProbeTest, WhatAJpegHoldsBesideItsPicture) {
    const auto withSegment = [](char marker, std::string content) {
        content.insert(0, {'\xFF', marker, static_cast<char>((content.size() + 2) >> 8U),
                           static_cast<char>((content.size() + 2) & 0xFFU)});
        return "\xFF\xD8" + content;
    };
    using Strings = std::vector<std::string>;
    const auto lost = [&](char marker, const std::string& content) {
        return headerOfBytes(withSegment(marker, content), FileFormat::JPEG).lost;
    };
    EXPECT_EQ(lost('\xE1', raw("http://ns.adobe.com/xap/1.0/\0<x:xmpmeta/>")), Strings());
    EXPECT_EQ(lost('\xE1', raw("http://ns.adobe.com/xmp/extension/\0....")), Strings{"extended XMP"});
    EXPECT_EQ(
        lost('\xE1', raw("http://ns.adobe.com/xap/1.0/\0<a xmlns:hdrgm=\"http://ns.adobe.com/hdr-gain-map/1.0/\"/>")),
        Strings{"a gain map"});
    EXPECT_EQ(lost('\xE2', raw("urn:iso:std:iso:ts:21496:-1\0....")), Strings{"a gain map"});
    EXPECT_EQ(lost('\xE2', raw("MPF\0II*\0")), Strings{"further pictures behind the first"});
}

TEST_F(ProbeTest, ExrChannelsThatAreNotDecodedAreLost) {
    using Strings = std::vector<std::string>;
    const auto lost = [&](const Strings& channels) { return headerOfBytes(exrFile(channels), FileFormat::EXR).lost; };
    for (const Strings& all :
         {Strings{"B", "G", "R"}, Strings{"A", "B", "G", "R"}, Strings{"Y"}, Strings{"Z"},
          Strings{"beauty.B", "beauty.G", "beauty.R"}, Strings{"BY", "RY", "Y"}, Strings{"A", "BY", "RY", "Y"}}) {
        EXPECT_EQ(lost(all), Strings()) << all.back();
    }
    for (const Strings& more : {Strings{"A", "B", "G", "R", "Z"}, Strings{"B", "G", "R", "Z"},
                                Strings{"A", "B", "G", "R", "diffuse.R"}, Strings{"BY", "RY", "Y", "Z"}}) {
        EXPECT_EQ(lost(more), Strings{"channels beyond RGBA"}) << more.back();
    }
    EXPECT_EQ(lost({"A", "Y"}), Strings{"channels beyond grey"});
    EXPECT_EQ(headerOfBytes(exrFile({"A", "B", "G", "R", "X", "Y", "Z"}), FileFormat::EXR).info.channels, 4U);
}

TEST_F(ProbeTest, ExrChannelsThatAreLostAreToldOnce) {
    const auto getWarnings = [&](const std::vector<std::string>& channels) {
        img::test::writeFile(at("a.exr"), exrFile(channels));
        std::vector<std::string> warnings;
        const WarningListener listener([&](const std::string& line) { warnings.push_back(line); });
        readPicture(at("a.exr"));
        return warnings;
    };
    EXPECT_EQ(getWarnings({"A", "B", "G", "R"}), std::vector<std::string>());
    EXPECT_EQ(getWarnings({"A", "B", "G", "R", "Z"}),
              std::vector<std::string>{at("a.exr") + ": holds channels beyond RGBA, which cannot be carried over"});
}

TEST_F(ProbeTest, DamagedFilesDoNoHarm) {
    std::mt19937 random(7);
    const img::test::Bitmap bytes = img::test::paint(64, 48, 24, img::test::motley);
    const img::test::Bitmap palette(FreeImage_ConvertTo8Bits(bytes.get()));
    const img::test::Bitmap floats = img::test::fillSamples(FIT_RGBF, 96, 64, 48);
    for (const char* name : {"a.png", "a.jpg", "a.tif", "a.bmp", "a.tga", "a.ppm", "a.jp2", "a.j2k", "a.psd", "a.exr",
                             "a.hdr", "a.pfm", "a.webp", "a.gif"}) {
        const FREE_IMAGE_FORMAT format = FreeImage_GetFIFFromFilename(name);
        const bool holdsFloats = FreeImage_FIFSupportsExportType(format, FIT_RGBF) != 0;
        img::test::writePicture(at(name), format == FIF_GIF ? palette : holdsFloats ? floats : bytes);
        const std::string whole = img::test::readFile(at(name));
        for (int round = 0; round < 60; ++round) {
            std::string file = whole.substr(0, random() % 4 == 0 ? random() % whole.size() : whole.size());
            for (int i = 0; i < 4 && !file.empty(); ++i) {
                file[random() % std::min<std::size_t>(file.size(), 400)] = static_cast<char>(random());
            }
            img::test::writeFile(at(name), file);
            const HeaderInfo info = getHeader(name).info;
            ASSERT_TRUE(!info.hasSize() || (info.channels >= 1 && info.channels <= 4 && info.bitsPerChannel >= 1 &&
                                            info.bitsPerChannel <= 64))
                << name << " in round " << round;
        }
    }
}

} // namespace zqx::pictures
