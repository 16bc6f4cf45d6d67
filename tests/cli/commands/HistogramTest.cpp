// histogram: counts beside literal ones, the chart, and the drawing in characters.
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>
#include <sstream>

#include <rapidjson/document.h>

#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace {

using Counts = std::array<std::uint64_t, 256>;

/// An environment variable for the programs that a test runs.
class Variable {
public:
    Variable(const char* name, const char* value) : mName(name) {
        if (const char* before = std::getenv(name)) {
            mBefore = before;
        }
        setenv(name, value, 1);
    }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;
    ~Variable() { mBefore ? setenv(mName, mBefore->c_str(), 1) : unsetenv(mName); }

private:
    const char* mName;
    std::optional<std::string> mBefore;
};

class HistogramTest : public ProgramTest {
protected:
    /// Parses what --json prints.
    static rapidjson::Document count(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "histogram");
        arguments.emplace_back("--json");
        const Outcome outcome = zqxImg(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        rapidjson::Document document;
        document.Parse(outcome.out.c_str());
        EXPECT_FALSE(document.HasParseError()) << outcome.out;
        return document;
    }

    static Counts getBins(const rapidjson::Document& document, const char* channel) {
        Counts counts{};
        const auto bins = document["channels"][channel]["bins"].GetArray();
        EXPECT_EQ(bins.Size(), counts.size());
        for (std::size_t i = 0; i < counts.size(); ++i) {
            counts[i] = bins[static_cast<rapidjson::SizeType>(i)].GetUint64();
        }
        return counts;
    }

    static unsigned outside(const rapidjson::Document& document, const char* channel, const char* what) {
        return document["channels"][channel][what].GetUint();
    }
};

double decoded(int code) {
    return std::pow(code / 255.0, 2.2);
}

std::size_t getLuma(const Rgba& color) {
    const double luma = 0.2126 * decoded(color.r) + 0.7152 * decoded(color.g) + 0.0722 * decoded(color.b);
    return static_cast<std::size_t>(std::lround(255.0 * std::pow(luma, 1.0 / 2.2)));
}

Bitmap greyRamp() {
    return paintIndexed(
        300, 2, 8,
        [](unsigned i) {
            const int grey = static_cast<int>(i);
            return Rgba{grey, grey, grey};
        },
        [](unsigned x, unsigned) { return x % 256; });
}

} // namespace

TEST_F(HistogramTest, CountsOfBytesAreExact) {
    for (const int bitsPerPixel : {24, 32}) {
        writePicture(at("in.png"), paint(97, 61, bitsPerPixel, motley));
        Counts red{};
        Counts green{};
        Counts blue{};
        Counts luma{};
        for (unsigned y = 0; y < 61; ++y) {
            for (unsigned x = 0; x < 97; ++x) {
                const Rgba color = motley(x, y);
                ++red[static_cast<std::size_t>(color.r)];
                ++green[static_cast<std::size_t>(color.g)];
                ++blue[static_cast<std::size_t>(color.b)];
                ++luma[getLuma(color)];
            }
        }
        const rapidjson::Document document = count({at("in.png")});
        EXPECT_EQ(document["file"].GetString(), at("in.png"));
        EXPECT_EQ(document["width"].GetInt(), 97);
        EXPECT_EQ(document["height"].GetInt(), 61);
        EXPECT_EQ(getBins(document, "red"), red);
        EXPECT_EQ(getBins(document, "green"), green);
        EXPECT_EQ(getBins(document, "blue"), blue);
        EXPECT_EQ(getBins(document, "luma"), luma);
    }
}

TEST_F(HistogramTest, TheLumaOfEveryGreyIsThatGrey) {
    writePicture(at("in.png"), paint(256, 1, 24, [](unsigned x, unsigned) {
                     const int grey = static_cast<int>(x);
                     return Rgba{grey, grey, grey};
                 }));
    Counts ones;
    ones.fill(1);
    EXPECT_EQ(getBins(count({at("in.png")}), "luma"), ones);
}

TEST_F(HistogramTest, GreyPicturesHaveLumaAlone) {
    writePicture(at("in.png"), greyRamp());
    const rapidjson::Document document = count({at("in.png")});
    EXPECT_EQ(document["channels"].MemberCount(), 1U);
    EXPECT_EQ(getBins(document, "luma")[43], 4U);
    EXPECT_EQ(getBins(document, "luma")[44], 2U);
}

TEST_F(HistogramTest, FloatsGoToTheNearestValueAndWhatIsOutOfRangeIsApart) {
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::array<float, 8> values = {-0.25F, -0.0F, 0.5F, 1.0F, 1.0001F, inf, nan, -inf};
    const Bitmap source(FreeImage_AllocateT(FIT_FLOAT, static_cast<int>(values.size()), 1, 32));
    std::copy(values.begin(), values.end(), reinterpret_cast<float*>(FreeImage_GetScanLine(source.get(), 0)));
    writePicture(at("in.tif"), source);
    const rapidjson::Document document = count({at("in.tif")});
    Counts expected{};
    expected[0] = 1;
    expected[186] = 1; // 255 * 0.5^(1/2.2) = 186.08
    expected[255] = 1;
    EXPECT_EQ(getBins(document, "luma"), expected);
    EXPECT_EQ(outside(document, "luma", "below"), 2U);
    EXPECT_EQ(outside(document, "luma", "above"), 2U);
    EXPECT_EQ(outside(document, "luma", "nan"), 1U);
}

TEST_F(HistogramTest, ChannelsOfFloatsAreCountedEachForItself) {
    const Bitmap source(FreeImage_AllocateT(FIT_RGBF, 1, 1, 96));
    const std::array<float, 3> pixel = {-1.0F, 0.5F, 2.0F};
    std::copy(pixel.begin(), pixel.end(), reinterpret_cast<float*>(FreeImage_GetScanLine(source.get(), 0)));
    writePicture(at("in.tif"), source);
    const rapidjson::Document document = count({at("in.tif")});
    EXPECT_EQ(outside(document, "red", "below"), 1U);
    EXPECT_EQ(getBins(document, "green")[186], 1U);
    EXPECT_EQ(outside(document, "blue", "above"), 1U);
    const double luma = -0.2126 + 0.5 * 0.7152 + 2.0 * 0.0722;
    EXPECT_EQ(getBins(document, "luma")[static_cast<std::size_t>(std::lround(255.0 * std::pow(luma, 1.0 / 2.2)))], 1U);
}

TEST_F(HistogramTest, AdjustmentsComeBeforeCounting) {
    writePicture(at("in.png"), paint(4, 1, 24, [](unsigned, unsigned) { return Rgba{0, 255, 255}; }));
    EXPECT_EQ(getBins(count({at("in.png"), "--set", "invert=1"}), "red")[255], 4U);
    EXPECT_EQ(getBins(count({at("in.png")}), "red")[0], 4U);
}

TEST_F(HistogramTest, TheChartIsAPictureOfItsOwn) {
    writePicture(at("in.png"), paint(20, 20, 24, motley));
    succeed({"histogram", at("in.png"), "-o", at("out.png")});
    const Bitmap chart = readPicture(at("out.png"));
    EXPECT_EQ(FreeImage_GetWidth(chart.get()), 1152U);
    EXPECT_EQ(FreeImage_GetHeight(chart.get()), 648U);
    EXPECT_EQ(FreeImage_GetBPP(chart.get()), 24U);
}

TEST_F(HistogramTest, CurvesStandWhereTheValuesAre) {
    writePicture(at("in.png"), paint(20, 20, 24, [](unsigned, unsigned) { return Rgba{200, 100, 50}; }));
    succeed({"histogram", at("in.png"), "-o", at("out.png")});
    const Bitmap chart = readPicture(at("out.png"));
    const auto place = [](unsigned code) { return 64 + 4 * code + 2; };
    constexpr unsigned HALFWAY = 360;
    const Rgba red = pixelAt(chart, place(200), HALFWAY);
    EXPECT_GT(red.r, red.g + 60);
    const Rgba green = pixelAt(chart, place(100), HALFWAY);
    EXPECT_GT(green.g, green.r + 60);
    const Rgba blue = pixelAt(chart, place(50), HALFWAY);
    EXPECT_GT(blue.b, blue.r + 60);
    EXPECT_LT(pixelAt(chart, place(225), HALFWAY).r, 60);
}

TEST_F(HistogramTest, TheChartMayBeOfAnyFormat) {
    writePicture(at("in.png"), paint(20, 20, 24, motley));
    for (const char* name : {"out.jpg", "out.gif", "out.tif"}) {
        EXPECT_EQ(zqxImg({"histogram", at("in.png"), "-o", at(name)}).exitCode, 0) << name;
        EXPECT_EQ(FreeImage_GetWidth(readPicture(at(name)).get()), 1152U) << name;
    }
    fail(2, {"histogram", at("in.png"), "-o", at("in.png")}, "would replace the input");
    fail(2, {"histogram", at("in.png"), "-o", at("out.xyz")}, "unknown picture extension");
}

TEST_F(HistogramTest, CharactersAreAsWideAsColumnsSays) {
    const Variable columns("COLUMNS", "60");
    const Variable locale("LC_ALL", "C");
    writePicture(at("in.png"), greyRamp());
    const Outcome outcome = zqxImg({"histogram", at("in.png")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    std::istringstream lines(outcome.out);
    std::size_t longest = 0;
    for (std::string line; std::getline(lines, line);) {
        longest = std::max(longest, line.size());
    }
    EXPECT_EQ(longest, 60U) << outcome.out;
    EXPECT_NE(outcome.out.find("in.png  300 x 2, 8-bit grey\n"), std::string::npos) << outcome.out;
    EXPECT_EQ(outcome.out.find('\x1b'), std::string::npos) << "colours are for terminals";
}

TEST_F(HistogramTest, TheLocaleDecidesOnTheCharacters) {
    const std::string block = "\xE2\x96\x88";
    writePicture(at("in.png"), greyRamp());
    {
        const Variable locale("LC_ALL", "de_DE.UTF-8");
        EXPECT_NE(zqxImg({"histogram", at("in.png")}).out.find(block), std::string::npos);
    }
    const Variable locale("LC_ALL", "de_DE.ISO-8859-1");
    EXPECT_EQ(zqxImg({"histogram", at("in.png")}).out.find(block), std::string::npos);
}

TEST_F(HistogramTest, ClippedValuesAreTold) {
    writePicture(at("in.png"), paint(8, 1, 24, [](unsigned x, unsigned) { return Rgba{x == 0 ? 255 : 9, 9, 9}; }));
    EXPECT_NE(zqxImg({"histogram", at("in.png")}).out.find("red           0.00 %      12.50 %"), std::string::npos);
}

TEST_F(HistogramTest, TheChartIsShownInTerminals) {
    writePicture(at("in.png"), paint(20, 20, 24, motley));
    EXPECT_EQ(zqxImg({"histogram", at("in.png"), "--show=kitty"}).out.substr(0, 3), "\x1b_G");
    fail(2, {"histogram", at("in.png"), "--show"}, "--show: standard output is not a terminal");
    fail(2, {"histogram", at("in.png"), "--show=kitty", "--json"}, "--json");
}

TEST_F(HistogramTest, UnreadablePicturesAreTold) {
    fail(1, {"histogram", at("none.png")}, at("none.png") + ": there is no such file");
    EXPECT_TRUE(files().empty());
}

} // namespace zqx::img::test
