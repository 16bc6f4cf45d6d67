// What is too large is refused by its header, with the option that raises the limit.
#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace {

class LimitsTest : public ProgramTest {
protected:
    LimitsTest() { writePicture(at("in.png"), paint(50, 40, 24, motley)); }

    /// The words of a refusal, which must be the same wherever the file is decoded.
    std::string getRefusal(const std::string& name, const std::vector<std::string>& options) {
        std::vector<std::string> arguments{"apply", at(name), "-o", at("out.png")};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const Outcome here = zqxImg(arguments);
        EXPECT_EQ(here.exitCode, 1) << here.err;
        EXPECT_FALSE(std::filesystem::exists(at("out.png")));
        arguments.push_back("--isolate");
        const Outcome isolated = zqxImg(arguments);
        EXPECT_EQ(isolated.exitCode, 1);
        EXPECT_EQ(isolated.err, here.err);
        return here.err;
    }

    std::string line(const std::string& name, const std::string& text) const {
        return "zqx-img: " + at(name) + ": " + text + "\n";
    }
};

/// Such a number of big-endian bytes.
std::string big(std::uint32_t value, int bytes = 4) {
    std::string result;
    for (int i = bytes - 1; i >= 0; --i) {
        result += static_cast<char>(value >> (8 * i) & 0xFFU);
    }
    return result;
}

} // namespace

TEST_F(LimitsTest, WidthHeightPixelsAndBytes) {
    EXPECT_EQ(getRefusal("in.png", {"--max-width", "49"}),
              line("in.png", "is 50 pixels wide, more than the 49 allowed; --max-width raises this limit"));
    EXPECT_EQ(getRefusal("in.png", {"--max-height", "39"}),
              line("in.png", "is 40 pixels high, more than the 39 allowed; --max-height raises this limit"));
    EXPECT_EQ(getRefusal("in.png", {"--max-pixels", "1999"}),
              line("in.png", "has 2000 pixels, more than the 1999 allowed; --max-pixels raises this limit"));
    writeFile(at("big.png"), readFile(at("in.png")) + std::string(1 << 20U, ' '));
    const std::string size = std::to_string(readFile(at("big.png")).size());
    EXPECT_EQ(
        getRefusal("big.png", {"--max-bytes", "1M"}),
        line("big.png", "is a file of " + size + " bytes, more than the 1 MiB allowed; --max-bytes raises this limit"));
}

TEST_F(LimitsTest, ExactlyWhatIsAllowedIsRead) {
    const std::string bytes = std::to_string(readFile(at("in.png")).size());
    succeed({"apply", at("in.png"), "-o", at("out.png"), "--max-width", "50", "--max-height", "40", "--max-pixels",
             "2K", "--max-bytes", bytes});
}

TEST_F(LimitsTest, LimitsCanBeRaised) {
    const std::string wide = at("wide.png");
    writePicture(wide, paintIndexed(
                           70'000, 2, 8,
                           [](unsigned i) {
                               return Rgba{static_cast<int>(i), 0, 0};
                           },
                           [](unsigned x, unsigned) { return x % 256; }));
    EXPECT_EQ(getRefusal("wide.png", {}),
              line("wide.png", "is 70000 pixels wide, more than the 65500 allowed; --max-width raises this limit"));
    succeed({"apply", wide, "-o", at("out.png"), "--max-width", "70K"});
}

TEST_F(LimitsTest, HeadersAreEnough) {
    // The pixels are not there: whoever asked for them would say something else.
    const std::string png = readFile(at("in.png"));
    writeFile(at("cut.png"), png.substr(0, 33) + big(0) + "IDAT");
    const std::string gif = std::string("GIF89a\x01\0\x01\0\0\0\0,\0\0\0\0", 18) + std::string("\x60\xEA\x01\0\0", 5);
    writeFile(at("a.gif"), gif);
    writeFile(at("a.sgi"), "\x01\xDA" + big(1, 2) + big(3, 2) + big(60'000, 2) + big(60'000, 2) + big(3, 2));
    writeFile(at("a.dds"),
              std::string("DDS \x7C\0\0\0\7\x10\0\0\x60\xEA\0\0\x60\xEA\0\0", 20) + std::string(108, '\0'));
    writeFile(at("a.j2k"), "\xFF\x4F\xFF\x51" + big(47, 2) + big(0, 2) + big(60'000) + big(60'000) + big(0) + big(0) +
                               std::string(16, '\0') + big(3, 2) + std::string(9, '\7'));
    writeFile(at("a.wbmp"), std::string("\0\0\x83\xD4\x60\x01", 6));
    for (const char* name : {"cut.png", "a.gif", "a.sgi", "a.dds", "a.j2k", "a.wbmp"}) {
        EXPECT_NE(getRefusal(name, {"--max-width", "49"}).find(" pixels wide, more than the 49 allowed"),
                  std::string::npos)
            << name;
    }
}

TEST_F(LimitsTest, PicturesWithoutAReadableHeaderAreCheckedAfterwards) {
    writeFile(at("a.xbm"), "#define a_width 16\n#define a_height 1\nstatic char a_bits[] = {\n  0x0F, 0x3C, };\n");
    succeed({"apply", at("a.xbm"), "-o", at("ok.png")});
    EXPECT_EQ(getRefusal("a.xbm", {"--max-width", "15"}),
              line("a.xbm", "is 16 pixels wide, more than the 15 allowed; --max-width raises this limit"));
}

TEST_F(LimitsTest, GuidesOfTheDenoiserAreLimitedToo) {
    fail(1,
         {"denoise", at("in.png"), "--albedo", at("in.png"), "--normal", at("in.png"), "-o", at("out.png"),
          "--max-pixels", "10"},
         "has 2000 pixels, more than the 10 allowed");
}

TEST_F(LimitsTest, EveryCommandThatReadsPicturesLimitsItsMemory) {
    const std::string in = at("in.png");
    const std::vector<std::vector<std::string>> commands = {
        {"info", in},
        {"preview", in, "-o", at("out.png")},
        {"histogram", in},
        {"compare", in, in},
        {"denoise", in, "--albedo", in, "--normal", in, "-o", at("out.png")},
        {"apply", in, "-o", at("out.png")}};
    for (std::vector<std::string> command : commands) {
        command.insert(command.end(), {"--max-memory", "1M"});
        fail(1, command, "more than the 1.0 MiB allowed; --max-memory raises this limit");
    }
    EXPECT_EQ(files(), std::vector<std::string>{"in.png"});
}

TEST_F(LimitsTest, InfoIsLimitedToo) {
    fail(1, {"info", at("in.png"), "--max-width", "10"}, "is 50 pixels wide, more than the 10 allowed");
}

TEST_F(LimitsTest, WhatIsNoLimitIsWrongUsage) {
    for (const char* option : {"--max-width", "--max-height", "--max-pixels", "--max-bytes", "--decode-memory"}) {
        for (const char* value : {"0", "x", "1.5G", ""}) {
            fail(2, {"apply", at("in.png"), "-o", at("out.png"), option, value}, option);
        }
    }
    fail(2, {"apply", at("in.png"), "-o", at("out.png"), "--max-pixels", "many"},
         "--max-pixels: \"many\" is not a number above zero, such as 20000 or 500M");
    fail(2, {"apply", at("in.png"), "-o", at("out.png"), "--max-bytes", "1Q"},
         "--max-bytes: \"1Q\" is not a number of bytes, such as 500M or 4G");
    EXPECT_EQ(files(), std::vector<std::string>{"in.png"});
}

} // namespace zqx::img::test
