// lut: the table as its readers see it, and what it does to a picture in another program.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>

#include <zqx/img/ColorGrading.h>

#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace {

using LutTest = ProgramTest;

struct Cube {
    std::string title;
    std::size_t size = 0;
    std::vector<float> values;

    float at(std::size_t r, std::size_t g, std::size_t b, std::size_t channel) const {
        return values.at(3 * ((b * size + g) * size + r) + channel);
    }
};

/// Reads a table strictly: header lines in order, then only lines of three plain decimals.
Cube readCube(const std::string& name) {
    std::istringstream lines(readFile(name));
    Cube cube;
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line.substr(0, 7), "TITLE \"");
    EXPECT_EQ(line.back(), '"');
    cube.title = line.substr(7, line.size() - 8);
    std::getline(lines, line);
    EXPECT_EQ(line.substr(0, 12), "LUT_3D_SIZE ");
    cube.size = std::stoul(line.substr(12));
    std::getline(lines, line);
    EXPECT_EQ(line, "DOMAIN_MIN 0 0 0");
    std::getline(lines, line);
    EXPECT_EQ(line, "DOMAIN_MAX 1 1 1");
    while (std::getline(lines, line)) {
        EXPECT_EQ(line.find_first_not_of("0123456789.- "), std::string::npos) << line;
        const char* text = line.c_str();
        for (int channel = 0; channel < 3; ++channel) {
            char* end = nullptr;
            cube.values.push_back(std::strtof(text, &end));
            EXPECT_NE(text, end) << line;
            text = end;
        }
        EXPECT_EQ(*text, '\0') << line;
    }
    EXPECT_EQ(cube.values.size(), 3 * cube.size * cube.size * cube.size);
    return cube;
}

struct Difference {
    double mean = 0.0;
    int maximum = 0;
};

Difference compare(const Bitmap& a, const Bitmap& b) {
    Difference difference;
    const unsigned width = FreeImage_GetWidth(a.get());
    const unsigned height = FreeImage_GetHeight(a.get());
    for (unsigned y = 0; y < height; ++y) {
        for (unsigned x = 0; x < width; ++x) {
            const Rgba p = pixelAt(a, x, y);
            const Rgba q = pixelAt(b, x, y);
            for (const int d : {std::abs(p.r - q.r), std::abs(p.g - q.g), std::abs(p.b - q.b)}) {
                difference.mean += d;
                difference.maximum = std::max(difference.maximum, d);
            }
        }
    }
    difference.mean /= 3.0 * width * height;
    return difference;
}

} // namespace

TEST_F(LutTest, NeutralTableIsTheIdentity) {
    succeed({"lut", "-o", at("neutral.cube")});
    const Cube cube = readCube(at("neutral.cube"));
    EXPECT_EQ(cube.title, "neutral");
    ASSERT_EQ(cube.size, 33U);
    for (std::size_t b = 0; b < 33; ++b) {
        for (std::size_t g = 0; g < 33; ++g) {
            for (std::size_t r = 0; r < 33; ++r) {
                ASSERT_NEAR(cube.at(r, g, b, 0), static_cast<float>(r) / 32.0F, 1e-6F);
                ASSERT_NEAR(cube.at(r, g, b, 1), static_cast<float>(g) / 32.0F, 1e-6F);
                ASSERT_NEAR(cube.at(r, g, b, 2), static_cast<float>(b) / 32.0F, 1e-6F);
            }
        }
    }
}

TEST_F(LutTest, EntriesAreGradedAndLimited) {
    succeed({"lut", "-o", at("out.cube"), "--size", "5", "--set", "exposure=1"});
    const Cube cube = readCube(at("out.cube"));
    ASSERT_EQ(cube.size, 5U);
    EXPECT_NEAR(cube.at(1, 0, 0, 0), 0.25 * std::pow(2.0, 1.0 / 2.2), 1e-6);
    EXPECT_EQ(cube.at(4, 0, 0, 0), 1.0F);
    EXPECT_EQ(cube.at(4, 0, 0, 1), 0.0F);
}

TEST_F(LutTest, LinearTableIsWhatTheLibraryBakes) {
    succeed({"lut", "-o", at("out.cube"), "--linear", "--size", "9", "--set", "exposure=1.5", "--set", "contrast=0.6",
             "--set", "temperature=5000", "--set", "saturation=1.4"});
    ColorGrading grading;
    grading.setExposure(1.5F);
    grading.setContrast(0.6F);
    grading.setTemperature(5000.0F);
    grading.setSaturation(1.4F);
    std::vector<float> expected(3 * 9 * 9 * 9);
    grading.generate3DLUT_RGB32F(9, expected.data());
    EXPECT_EQ(readCube(at("out.cube")).values, expected); // to the last bit: the digits have to be enough for that
}

TEST_F(LutTest, BlackWithoutHueIsWrittenAsBlack) {
    for (const bool linear : {false, true}) {
        std::vector<std::string> command{"lut", "-o", at("out.cube"), "--size", "3", "--set", "hue=40"};
        if (linear) {
            command.push_back("--linear");
        }
        succeed(command);
        const Cube cube = readCube(at("out.cube"));
        EXPECT_EQ(cube.at(0, 0, 0, 0), 0.0F);
        EXPECT_EQ(cube.at(0, 0, 0, 1), 0.0F);
        EXPECT_EQ(cube.at(0, 0, 0, 2), 0.0F);
    }
}

TEST_F(LutTest, TitleIsOneQuotedLine) {
    succeed({"lut", "-o", at("out.cube"), "--size", "2", "--title", "My \"best\"\nlook"});
    EXPECT_EQ(readCube(at("out.cube")).title, "My 'best' look");
}

TEST_F(LutTest, LargestSizeIsWritten) {
    succeed({"lut", "-o", at("out.cube"), "--size", "65"});
    EXPECT_EQ(readCube(at("out.cube")).size, 65U);
}

TEST_F(LutTest, WhatIsLeftOutIsSaid) {
    const Outcome outcome = zqxImg({"lut", "-o", at("out.cube"), "--size", "2", "--set", "sharpness=0.5", "--set",
                                    "invert=true", "--set", "flipX=true", "--set", "flipY=true"});
    EXPECT_EQ(outcome.exitCode, 0);
    for (const char* name : {"sharpness", "invert", "flipX", "flipY"}) {
        EXPECT_NE(outcome.err.find(std::string("warning: ") + name + ": is not part of the grading"), std::string::npos)
            << outcome.err;
    }
}

TEST_F(LutTest, AnotherProgramGradesWithItAsApplyDoes) {
    // Between its points a table is a straight line. That is near the truth until a saturated colour leaves the range:
    // the bend where a channel reaches 0 lies within a cell, and the decoded dark codes there are far apart.
    const struct {
        const char* saturation;
        double mean;
        int maximum;
    } looks[] = {{"saturation=0.8", 0.1, 4}, {"saturation=1.25", 0.3, 20}}; // 0.073 and 3, 0.24 and 17 measured
    for (const auto& [saturation, mean, maximum] : looks) {
        const std::vector<std::string> look{"--set", "exposure=0.3",     "--set", "contrast=0.54",
                                            "--set", "temperature=5400", "--set", saturation};
        std::vector<std::string> bake{"lut", "-o", at("look.cube")};
        std::vector<std::string> apply{"apply", ZQX_SAMPLE, "-o", at("applied.png")};
        bake.insert(bake.end(), look.begin(), look.end());
        apply.insert(apply.end(), look.begin(), look.end());
        succeed(bake);
        succeed(apply);
        const std::string filter =
            "format=gbrp,lut3d=file=" + at("look.cube") + ":interp=tetrahedral,format=rgb24"; // no detour through YUV
        const Outcome outcome =
            runCommand({"ffmpeg", "-y", "-v", "error", "-i", ZQX_SAMPLE, "-vf", filter, at("baked.png")});
        ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
        const Difference difference = compare(readPicture(at("applied.png")), readPicture(at("baked.png")));
        EXPECT_LT(difference.mean, mean) << saturation;
        EXPECT_LE(difference.maximum, maximum) << saturation;
    }
}

} // namespace zqx::img::test
