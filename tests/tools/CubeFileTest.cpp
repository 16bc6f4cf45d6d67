// Gradings as text that other programs read.
#include <sstream>
#include <string>
#include <vector>

#include <zqx/tools/CubeFile.h>

#include "zqx/pictures/files/Error.h"

#include <support/DirectoryTest.h>
#include <support/Process.h>

namespace zqx::tools {

namespace {

class CubeFileTest : public img::test::DirectoryTest {
protected:
    std::vector<std::string> getLines(const std::string& name) const {
        std::vector<std::string> lines;
        std::istringstream text(img::test::readFile(at(name)));
        for (std::string line; std::getline(text, line);) {
            lines.push_back(line);
        }
        return lines;
    }
};

using Lines = std::vector<std::string>;

} // namespace

TEST_F(CubeFileTest, HeadAndPointsWithRedTheFastest) {
    writeCubeFile(at("look.cube"), img::ColorGrading(), {2, true, ""});
    EXPECT_EQ(getLines("look.cube"), (Lines{"TITLE \"look\"", "LUT_3D_SIZE 2", "DOMAIN_MIN 0 0 0", "DOMAIN_MAX 1 1 1",
                                            "0 0 0", "1 0 0", "0 1 0", "1 1 0", "0 0 1", "1 0 1", "0 1 1", "1 1 1"}));
}

TEST_F(CubeFileTest, TitleStaysOnItsLineAndInItsQuotes) {
    writeCubeFile(at("a.cube"), img::ColorGrading(), {2, false, "one \"two\"\nthree"});
    EXPECT_EQ(getLines("a.cube").front(), "TITLE \"one 'two' three\"");
}

TEST_F(CubeFileTest, NumbersReadBackAsTheSameFloats) {
    img::ColorGrading grading;
    grading.setExposure(-1.3F);
    grading.setTemperature(4000.0F);
    const std::vector<float> points = bakeLattice(grading, 5, false);
    writeCubeFile(at("a.cube"), grading, {5, false, ""});
    std::istringstream text(img::test::readFile(at("a.cube")));
    for (std::string line; std::getline(text, line) && !line.starts_with("DOMAIN_MAX");) {
    }
    for (const float wanted : points) {
        float number = -1.0F;
        ASSERT_TRUE(text >> number);
        ASSERT_EQ(number, wanted);
    }
}

TEST_F(CubeFileTest, EncodedNeutralTableIsTheIdentityWithinRounding) {
    const std::vector<float> points = bakeLattice(img::ColorGrading(), 9, false);
    ASSERT_EQ(points.size(), 3U * 9 * 9 * 9);
    for (std::size_t i = 0; i < points.size() / 3; ++i) {
        EXPECT_NEAR(points[3 * i], static_cast<double>(i % 9) / 8.0, 2e-6);
        EXPECT_NEAR(points[3 * i + 1], static_cast<double>(i / 9 % 9) / 8.0, 2e-6);
        EXPECT_NEAR(points[3 * i + 2], static_cast<double>(i / 81) / 8.0, 2e-6);
    }
}

TEST_F(CubeFileTest, SizesThatReadersRefuseAreRefused) {
    EXPECT_THROW(writeCubeFile(at("a.cube"), img::ColorGrading(), {1, false, ""}), pictures::UsageError);
    EXPECT_THROW(writeCubeFile(at("a.cube"), img::ColorGrading(), {257, false, ""}), pictures::UsageError);
    EXPECT_TRUE(files().empty());
}

TEST_F(CubeFileTest, FailureNamesTheFile) {
    try {
        writeCubeFile(at("none/a.cube"), img::ColorGrading());
        FAIL() << "was written";
    } catch (const pictures::Error& error) {
        EXPECT_NE(std::string(error.what()).find(at("none/a.cube")), std::string::npos) << error.what();
    }
}

} // namespace zqx::tools
