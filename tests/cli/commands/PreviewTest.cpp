// preview: small pictures, sheets, and pictures for terminals.
#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace {

using PreviewTest = ProgramTest;

std::pair<unsigned, unsigned> pictureSize(const Bitmap& bitmap) {
    return {FreeImage_GetWidth(bitmap.get()), FreeImage_GetHeight(bitmap.get())};
}

std::pair<unsigned, unsigned> pictureSize(const std::string& name) {
    return pictureSize(readPicture(name));
}

Bitmap flatPicture(unsigned width, unsigned height, const Rgba& color, int bitsPerPixel = 24) {
    return paint(width, height, bitsPerPixel, [&](unsigned, unsigned) { return color; });
}

constexpr Rgba GROUND{48, 48, 48};

/// Pixels that are neither ground nor a colour of the picture: letters.
unsigned countLight(const Bitmap& sheet, unsigned top, unsigned bottom) {
    unsigned count = 0;
    for (unsigned y = top; y < bottom; ++y) {
        for (unsigned x = 0; x < FreeImage_GetWidth(sheet.get()); ++x) {
            count += pixelAt(sheet, x, y).g > 150 ? 1 : 0;
        }
    }
    return count;
}

std::string decodedBase64(const std::string& text) {
    constexpr std::string_view DIGITS = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string bytes;
    std::uint32_t bits = 0;
    int count = 0;
    for (const char c : text) {
        const std::size_t digit = DIGITS.find(c);
        if (digit == std::string_view::npos) {
            continue;
        }
        bits = bits << 6 | static_cast<std::uint32_t>(digit);
        count += 6;
        if (count >= 8) {
            count -= 8;
            bytes += static_cast<char>(bits >> count & 0xFF);
        }
    }
    return bytes;
}

/// The pixels that kitty's sequences carry, and the first of their parameters.
struct KittyPicture {
    std::string parameters;
    std::string rgba;
};

KittyPicture readKitty(const std::string& text) {
    KittyPicture picture;
    for (std::size_t start = 0; (start = text.find("\x1b_G", start)) != std::string::npos; start += 3) {
        const std::size_t end = text.find('\x1b', start + 1);
        const std::size_t content = std::min(text.find(';', start), end);
        if (picture.parameters.empty()) {
            picture.parameters = text.substr(start + 3, content - start - 3);
        }
        picture.rgba += decodedBase64(text.substr(content, end - content));
    }
    return picture;
}

} // namespace

TEST_F(PreviewTest, TheLongestSideIsAsAskedFor) {
    writePicture(at("in.png"), paint(300, 200, 24, motley));
    succeed({"preview", at("in.png"), "-o", at("out.png"), "--size", "60"});
    EXPECT_EQ(pictureSize(at("out.png")), std::pair(60U, 40U));
    writePicture(at("tall.png"), paint(20, 300, 24, motley));
    succeed({"preview", at("tall.png"), "-o", at("out.png"), "--size", "100"});
    EXPECT_EQ(pictureSize(at("out.png")), std::pair(7U, 100U));
}

TEST_F(PreviewTest, TheLongestSideIs1024WhenNothingIsSaid) {
    writePicture(at("in.png"), flatPicture(2048, 10, {1, 2, 3}));
    succeed({"preview", at("in.png"), "-o", at("out.png")});
    EXPECT_EQ(pictureSize(at("out.png")), std::pair(1024U, 5U));
}

TEST_F(PreviewTest, SmallPicturesKeepEveryPixel) {
    for (const auto& [width, height] : {std::pair(37U, 23U), std::pair(1U, 1U), std::pair(1U, 40U)}) {
        const Bitmap source = paint(width, height, 32, motley);
        writePicture(at("in.png"), source);
        succeed({"preview", at("in.png"), "-o", at("out.png")});
        EXPECT_TRUE(isIdentical(readPicture(at("out.png")), source)) << width << " x " << height;
    }
}

TEST_F(PreviewTest, ExtremeShapesKeepAPixelInEachDirection) {
    writePicture(at("in.png"), flatPicture(5000, 3, {90, 60, 30}));
    succeed({"preview", at("in.png"), "-o", at("out.png"), "--size", "50"});
    const Bitmap result = readPicture(at("out.png"));
    EXPECT_EQ(pictureSize(result), std::pair(50U, 1U));
    EXPECT_EQ(pixelAt(result, 25, 0), (Rgba{90, 60, 30}));
}

TEST_F(PreviewTest, PixelsAreAveragedInLinearLight) {
    writePicture(at("in.png"), paint(64, 64, 24, [](unsigned x, unsigned y) {
                     return (x + y) % 2 == 0 ? Rgba{0, 0, 0} : Rgba{255, 255, 255};
                 }));
    succeed({"preview", at("in.png"), "-o", at("out.png"), "--size", "8"});
    EXPECT_EQ(pixelAt(readPicture(at("out.png")), 3, 3), (Rgba{186, 186, 186})); // 255 * 0.5^(1/2.2), not 128
}

TEST_F(PreviewTest, FlatPicturesHaveTheColoursThatApplyGivesThem) {
    writePicture(at("in.png"), flatPicture(301, 203, {200, 120, 40}));
    const std::vector<std::string> adjustments = {"--set",          "exposure=0.7", "--set",
                                                  "saturation=1.4", "--set",        "hue=20"};
    std::vector<std::string> preview = {"preview", at("in.png"), "-o", at("small.png"), "--size", "100"};
    std::vector<std::string> apply = {"apply", at("in.png"), "-o", at("full.png")};
    preview.insert(preview.end(), adjustments.begin(), adjustments.end());
    apply.insert(apply.end(), adjustments.begin(), adjustments.end());
    succeed(preview);
    succeed(apply);
    const Rgba color = pixelAt(readPicture(at("full.png")), 5, 5);
    EXPECT_NE(color, (Rgba{200, 120, 40}));
    EXPECT_TRUE(isIdentical(readPicture(at("small.png")), flatPicture(100, 67, color)));
}

TEST_F(PreviewTest, GreyStaysGreyAndFloatStaysFloat) {
    writePicture(at("in.exr"), fillSamples(FIT_RGBAF, 128, 40, 20), EXR_FLOAT);
    succeed({"preview", at("in.exr"), "-o", at("out.exr"), "--size", "10"});
    EXPECT_EQ(FreeImage_GetImageType(readPicture(at("out.exr")).get()), FIT_RGBAF);
    writePicture(at("grey.png"), paintIndexed(
                                     40, 20, 8,
                                     [](unsigned i) {
                                         const int grey = static_cast<int>(i);
                                         return Rgba{grey, grey, grey};
                                     },
                                     [](unsigned x, unsigned y) { return x + y; }));
    succeed({"preview", at("grey.png"), "-o", at("out.png"), "--size", "10"});
    EXPECT_EQ(FreeImage_GetBPP(readPicture(at("out.png")).get()), 8U);
}

TEST_F(PreviewTest, OneNanDoesNotSpreadOverThePicture) {
    const Bitmap source = fillSamples(FIT_RGBF, 96, 40, 20);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    std::memcpy(FreeImage_GetScanLine(source.get(), 19), &nan, sizeof nan); // the upper left pixel's red
    writePicture(at("in.exr"), source, EXR_FLOAT);
    succeed({"preview", at("in.exr"), "-o", at("out.exr"), "--size", "10"});
    const Bitmap result = readPicture(at("out.exr"));
    unsigned count = 0;
    for (unsigned y = 0; y < 5; ++y) {
        for (unsigned x = 0; x < 10; ++x) {
            count += std::count_if(floatsAt(result, x, y), floatsAt(result, x, y) + 3,
                                   [](float value) { return value != value; });
        }
    }
    EXPECT_EQ(count, 1U);
}

TEST_F(PreviewTest, TheLeftHalfMayBeTheSource) {
    writePicture(at("in.png"), flatPicture(80, 40, {100, 100, 100}));
    succeed({"preview", at("in.png"), "-o", at("out.png"), "--size", "40", "--before-after", "--set", "invert=1"});
    const Bitmap result = readPicture(at("out.png"));
    EXPECT_EQ(pixelAt(result, 5, 10), (Rgba{100, 100, 100}));
    EXPECT_EQ(pixelAt(result, 20, 10), (Rgba{255, 255, 255}));
    EXPECT_GT(pixelAt(result, 35, 10).r, 200);
}

TEST_F(PreviewTest, ASheetShowsTheOriginalAndEachDocument) {
    writePicture(at("in.png"), flatPicture(300, 200, {120, 80, 40}));
    succeed({"params", "--set", "flipX=1", "-o", at("same.json")});
    succeed({"params", "--set", "invert=1", "-o", at("negative.json")});
    succeed({"apply", at("in.png"), "-o", at("negative.png"), "--set", "invert=1"});
    succeed({"preview", at("in.png"), "-o", at("out.png"), "--sheet", at("same.json"), at("negative.json")});
    const Bitmap sheet = readPicture(at("out.png"));
    // Two by two is nearer to 3:2 than three in a row. Spaces follow the letters, which are 13 pixels here.
    EXPECT_EQ(pictureSize(sheet), std::pair(19U + 2 * (300U + 19), 19U + 2 * (200U + 26 + 19)));
    EXPECT_EQ(pixelAt(sheet, 19 + 150, 19 + 100), (Rgba{120, 80, 40}));
    EXPECT_EQ(pixelAt(sheet, 338 + 150, 19 + 100), (Rgba{120, 80, 40}));
    EXPECT_EQ(pixelAt(sheet, 19 + 150, 264 + 100), pixelAt(readPicture(at("negative.png")), 0, 0));
    EXPECT_EQ(pixelAt(sheet, 338 + 150, 264 + 100), GROUND);
    EXPECT_EQ(pixelAt(sheet, 5, 5), GROUND);
    EXPECT_GT(countLight(sheet, 219, 245), 50U) << "labels";
}

TEST_F(PreviewTest, PicturesOnSheetsAreOf480PixelsWhenNothingIsSaid) {
    writePicture(at("in.png"), flatPicture(960, 640, {120, 80, 40}));
    succeed({"params", "-o", at("plain.json")});
    succeed({"preview", at("in.png"), "-o", at("out.png"), "--sheet", at("plain.json")});
    EXPECT_EQ(pictureSize(at("out.png")), std::pair(24U + 480 + 24 + 480 + 24, 24U + 320 + 32 + 24));
}

TEST_F(PreviewTest, ThirtyPicturesComeIntoRowsAndColumns) {
    writePicture(at("in.png"), paint(90, 60, 24, motley));
    std::vector<std::string> command = {"preview", at("in.png"), "-o", at("out.png"), "--sheet"};
    for (int i = 1; i < 30; ++i) {
        command.push_back(at("look" + std::to_string(i) + ".json"));
        succeed({"params", "--set", "hue=" + std::to_string(5 * i), "-o", command.back()});
    }
    succeed(command);
    const auto [width, height] = pictureSize(at("out.png"));
    EXPECT_EQ(width, 19U + 5 * (160U + 19)); // a narrow picture's place is as wide as a label needs
    EXPECT_EQ(height, 19U + 6 * (60U + 26 + 19));
}

TEST_F(PreviewTest, TransparentPlacesOfASheetShowItsGround) {
    writePicture(at("in.png"), paint(200, 100, 32, [](unsigned x, unsigned) {
                     return Rgba{250, 0, 0, x < 100 ? 0 : 255};
                 }));
    succeed({"params", "-o", at("plain.json")});
    succeed({"preview", at("in.png"), "-o", at("out.png"), "--sheet", at("plain.json")});
    const Bitmap sheet = readPicture(at("out.png"));
    EXPECT_EQ(pixelAt(sheet, 19 + 50, 19 + 50), GROUND);
    EXPECT_EQ(pixelAt(sheet, 19 + 150, 19 + 50), (Rgba{250, 0, 0}));
}

TEST_F(PreviewTest, LabelsMayBeLongAndInOtherAlphabets) {
    writePicture(at("in.png"), flatPicture(200, 100, {0, 0, 0}));
    const std::string name = "\xC3\xBC"
                             "berbelichtet \xCE\xB1\xCE\xB2\xCE\xB3 " +
                             std::string(150, 'x') + ".json";
    succeed({"params", "-o", at(name)});
    succeed({"preview", at("in.png"), "-o", at("out.png"), "--sheet", at(name)});
    const Bitmap sheet = readPicture(at("out.png"));
    EXPECT_EQ(FreeImage_GetWidth(sheet.get()), 19U + 2 * (200U + 19));
    for (unsigned y = 119; y < 145; ++y) { // the label keeps to its picture's width
        EXPECT_EQ(pixelAt(sheet, 19 + 200 + 10, y), GROUND);
        EXPECT_EQ(pixelAt(sheet, 19 + 2 * 219 - 10, y), GROUND);
    }
}

TEST_F(PreviewTest, ADamagedDocumentOfASheetIsNamed) {
    writePicture(at("in.png"), flatPicture(20, 10, {0, 0, 0}));
    succeed({"params", "-o", at("good.json")});
    writeFile(at("bad.json"), "{\"imageProcessing\": {");
    fail(1, {"preview", at("in.png"), "-o", at("out.png"), "--sheet", at("good.json"), at("bad.json")}, at("bad.json"));
    fail(1, {"preview", at("in.png"), "-o", at("out.png"), "--sheet", at("none.json")}, at("none.json"));
    EXPECT_EQ(files(), (std::vector<std::string>{"bad.json", "good.json", "in.png"}));
}

TEST_F(PreviewTest, WhatIsSetForAllIsWarnedOfOnce) {
    writePicture(at("in.png"), flatPicture(20, 10, {0, 0, 0}));
    succeed({"params", "-o", at("a.json")});
    succeed({"params", "-o", at("b.json")});
    const Outcome outcome = zqxImg(
        {"preview", at("in.png"), "-o", at("out.png"), "--set", "exposure=99", "--sheet", at("a.json"), at("b.json")});
    EXPECT_EQ(outcome.exitCode, 0);
    const std::size_t warning = outcome.err.find("--set exposure=99: outside");
    EXPECT_NE(warning, std::string::npos) << outcome.err;
    EXPECT_EQ(outcome.err.find("outside", warning + 30), std::string::npos) << outcome.err;
}

TEST_F(PreviewTest, CommandLinesThatCannotBeMeantAreRefused) {
    writePicture(at("in.png"), flatPicture(20, 10, {0, 0, 0}));
    fail(2, {"preview", at("in.png")}, "give -o FILE to write the picture, or --show");
    fail(2, {"preview", at("in.png"), "-o", at("in.png")}, "would replace the input");
    fail(2, {"preview", at("in.png"), "-o", at("out.xyz")}, "unknown picture extension");
    fail(2, {"preview", at("in.png"), "-o", at("out.png"), "--size", "0"}, "--size");
    fail(2, {"preview", at("in.png"), "-o", at("out.png"), "--size", "65501"}, "--size");
    fail(2, {"preview", at("in.png"), "-o", at("out.png"), "--before-after", "--sheet", at("a.json")}, "--sheet");
    fail(2, {"preview", at("in.png"), "--show=paper"}, "--show");
    EXPECT_EQ(files(), std::vector<std::string>{"in.png"});
}

TEST_F(PreviewTest, ShowingWantsATerminal) {
    writePicture(at("in.png"), flatPicture(20, 10, {0, 0, 0}));
    fail(2, {"preview", at("in.png"), "--show"}, "--show: standard output is not a terminal");
}

TEST_F(PreviewTest, KittyGetsThePixelsInWholeCells) {
    writePicture(at("in.png"), paint(40, 30, 24, [](unsigned x, unsigned y) { return quarters(x, y, 40, 30); }));
    const Outcome outcome = zqxImg({"preview", at("in.png"), "--show=kitty"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    const KittyPicture picture = readKitty(outcome.out);
    EXPECT_EQ(picture.parameters.substr(0, 34), "a=T,f=32,s=40,v=40,c=4,r=2,m=1") << "cells of 10 x 20 pixels";
    ASSERT_EQ(picture.rgba.size(), std::size_t{4} * 40 * 40);
    const auto pixel = [&](unsigned x, unsigned y) { return picture.rgba.substr(std::size_t{4} * (40 * y + x), 4); };
    using namespace std::string_literals;
    EXPECT_EQ(pixel(5, 5), "\xFF\0\0\xFF"s);
    EXPECT_EQ(pixel(30, 5), "\0\xFF\0\xFF"s);
    EXPECT_EQ(pixel(5, 25), "\0\0\xFF\xFF"s);
    EXPECT_EQ(pixel(5, 37)[3], '\0') << "below the picture";
}

TEST_F(PreviewTest, EachProtocolHasItsSequences) {
    writePicture(at("in.png"), paint(40, 40, 24, motley));
    const auto shown = [&](const std::string& protocol) {
        return zqxImg({"preview", at("in.png"), "--show=" + protocol}).out;
    };
    EXPECT_EQ(shown("iterm").substr(0, 12), "\x1b]1337;File=");
    EXPECT_EQ(shown("sixel").substr(0, 2), "\x1bP");
    EXPECT_NE(shown("sixel").find("\x1b\\"), std::string::npos);
    EXPECT_FALSE(shown("symbols").empty());
}

TEST_F(PreviewTest, ShowingAndWritingGoTogether) {
    writePicture(at("in.png"), paint(40, 40, 24, motley));
    const Outcome outcome = zqxImg({"preview", at("in.png"), "--show=kitty", "-o", at("out.png")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.out.substr(0, 3), "\x1b_G");
    EXPECT_TRUE(isIdentical(readPicture(at("out.png")), readPicture(at("in.png"))));
}

} // namespace zqx::img::test
