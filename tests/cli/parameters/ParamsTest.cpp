// The naming of adjustments, the parameter document, and the words of the program.
#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace {

using ParamsTest = ProgramTest;

constexpr const char* DEFAULT_DOCUMENT = R"({
    "imageProcessing": {
        "version": 1,
        "inversionEnabled": false,
        "colorGrading": {
            "exposure": 0.0,
            "contrast": 0.5,
            "highlight": 0.0,
            "shadow": 0.0,
            "temperature": 6500.0,
            "hue": 0.0,
            "saturation": 1.0,
            "gradientMap": {
                "intensity": 0.0,
                "black": [
                    0.0,
                    0.0,
                    0.0,
                    1.0
                ],
                "white": [
                    1.0,
                    1.0,
                    1.0,
                    1.0
                ]
            }
        },
        "sharpness": 0.0,
        "flipX": false,
        "flipY": false
    }
}
)";

/// Replaces the first occurrence.
std::string with(std::string text, const std::string& from, const std::string& to) {
    const std::size_t place = text.find(from);
    EXPECT_NE(place, std::string::npos) << from;
    return text.replace(place, from.size(), to);
}

struct Range {
    const char* name;
    const char* member;
    const char* minimum;
    const char* maximum;
    const char* storedMinimum;
    const char* storedMaximum;
};

constexpr Range RANGES[] = {{"exposure", "exposure", "-5", "5", "-5.0", "5.0"},
                            {"contrast", "contrast", "0", "1", "0.0", "1.0"},
                            {"highlight", "highlight", "-1", "8", "-1.0", "8.0"},
                            {"shadow", "shadow", "-8", "1", "-8.0", "1.0"},
                            {"temperature", "temperature", "2500", "10500", "2500.0", "10500.0"},
                            {"hue", "hue", "-180", "180", "-180.0", "180.0"},
                            {"saturation", "saturation", "0", "2", "0.0", "2.0"},
                            {"gradient.intensity", "intensity", "0", "1", "0.0", "1.0"},
                            {"sharpness", "sharpness", "-1", "1", "-1.0", "1.0"}};

} // namespace

TEST_F(ParamsTest, DefaultDocument) {
    const Outcome outcome = zqxImg({"params"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, DEFAULT_DOCUMENT);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ParamsTest, EveryNameReachesItsMember) {
    const Outcome outcome = zqxImg({"params",
                                    "--set",
                                    "exposure=-1.5",
                                    "--set",
                                    "contrast=0.25",
                                    "--set",
                                    "highlight=2",
                                    "--set",
                                    "shadow=-2",
                                    "--set",
                                    "temperature=4000",
                                    "--set",
                                    "hue=+90",
                                    "--set",
                                    "saturation=5e-1",
                                    "--set",
                                    "gradient.intensity=.75",
                                    "--set",
                                    "gradient.black=0.5,0.25,-0.125",
                                    "--set",
                                    "gradient.white=2,1.5,8",
                                    "--set",
                                    "sharpness=-0.5",
                                    "--set",
                                    "invert=on",
                                    "--set",
                                    "flipX=1",
                                    "--set",
                                    "flipY=true"});
    std::string expected = with(DEFAULT_DOCUMENT, "\"exposure\": 0.0", "\"exposure\": -1.5");
    expected = with(expected, "\"contrast\": 0.5", "\"contrast\": 0.25");
    expected = with(expected, "\"highlight\": 0.0", "\"highlight\": 2.0");
    expected = with(expected, "\"shadow\": 0.0", "\"shadow\": -2.0");
    expected = with(expected, "6500.0", "4000.0");
    expected = with(expected, "\"hue\": 0.0", "\"hue\": 90.0");
    expected = with(expected, "\"saturation\": 1.0", "\"saturation\": 0.5");
    expected = with(expected, "\"intensity\": 0.0", "\"intensity\": 0.75");
    const std::string indent(20, ' ');
    const auto color = [&](const char* r, const char* g, const char* b) {
        return std::string("[\n") + indent + r + ",\n" + indent + g + ",\n" + indent + b + ",\n";
    };
    expected =
        with(expected, "\"black\": " + color("0.0", "0.0", "0.0"), "\"black\": " + color("0.5", "0.25", "-0.125"));
    expected = with(expected, "\"white\": " + color("1.0", "1.0", "1.0"), "\"white\": " + color("2.0", "1.5", "8.0"));
    expected = with(expected, "\"sharpness\": 0.0", "\"sharpness\": -0.5");
    expected = with(expected, "\"inversionEnabled\": false", "\"inversionEnabled\": true");
    expected = with(expected, "\"flipX\": false", "\"flipX\": true");
    expected = with(expected, "\"flipY\": false", "\"flipY\": true");
    EXPECT_EQ(outcome.out, expected);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ParamsTest, DocumentRoundTripIsExact) {
    succeed({"params", "--set", "exposure=0.1", "--set", "hue=-33.3", "--set", "gradient.white=0.7,1e-7,3", "--set",
             "flipY=on", "-o", at("a.json")});
    succeed({"params", "--params", at("a.json"), "-o", at("b.json")});
    EXPECT_EQ(readFile(at("a.json")), readFile(at("b.json")));
    EXPECT_NE(readFile(at("a.json")).find("0.10000000149011612"), std::string::npos);
}

TEST_F(ParamsTest, PartialDocumentIsCompleted) {
    writeFile(at("in.json"), R"({"imageProcessing":{"version":1,"sharpness":4,"flipX":"yes","flipY":true}})");
    const Outcome outcome = zqxImg({"params", "--params", at("in.json")});
    EXPECT_EQ(outcome.out, with(with(DEFAULT_DOCUMENT, "\"sharpness\": 0.0", "\"sharpness\": 1.0"), "\"flipY\": false",
                                "\"flipY\": true"));
}

TEST_F(ParamsTest, ValuesOutOfRangeAreLimitedAloud) {
    for (const Range& range : RANGES) {
        for (const bool above : {false, true}) {
            const std::string setting = std::string(range.name) + (above ? "=99999" : "=-99999");
            const Outcome outcome = zqxImg({"params", "--set", setting});
            EXPECT_EQ(outcome.exitCode, 0);
            EXPECT_EQ(outcome.err, "zqx-img: warning: --set " + setting + ": outside the range " + range.minimum +
                                       " to " + range.maximum + "; limited to " +
                                       (above ? range.maximum : range.minimum) + "\n");
            const std::string member = std::string("\"") + range.member + "\": ";
            EXPECT_NE(outcome.out.find(member + (above ? range.storedMaximum : range.storedMinimum)), std::string::npos)
                << outcome.out;
        }
    }
}

TEST_F(ParamsTest, ValuesAtTheLimitsPassSilently) {
    for (const Range& range : RANGES) {
        for (const char* value : {range.minimum, range.maximum}) {
            EXPECT_EQ(zqxImg({"params", "--set", std::string(range.name) + "=" + value}).err, "");
        }
    }
}

TEST_F(ParamsTest, SettingsThatCannotBeMeantAreRefused) {
    for (const char* setting : {"exposure=nan",
                                "exposure=inf",
                                "exposure=-inf",
                                "exposure=1e99",
                                "exposure=",
                                "exposure=1x",
                                "exposure=1 ",
                                "exposure= 1",
                                "exposure=0x10",
                                "exposure=1,5",
                                "exposure=+-1",
                                "exposure=--1",
                                "flipX=yes",
                                "flipX=2",
                                "flipX=",
                                "invert=TRUE",
                                "gradient.black=1",
                                "gradient.black=1,2",
                                "gradient.black=1,2,3,4",
                                "gradient.black=1,,3",
                                "gradient.black=1,2,nan",
                                "gradient.black=1,2,1e39",
                                "gradient.white="}) {
        fail(2, {"params", "--set", setting}, std::string("--set ") + setting + ": the value must be ");
    }
    fail(2, {"params", "--set", "exposure"}, "--set exposure: must be written name=value");
    fail(2, {"params", "--set", ""}, "--set : must be written name=value");
}

TEST_F(ParamsTest, UnknownNameSuggestsTheNearest) {
    const std::pair<const char*, const char*> names[] = {{"expsure", "exposure"},
                                                         {"Contrast", "contrast"},
                                                         {"flipx", "flipX"},
                                                         {"highlights", "highlight"},
                                                         {"gradient.whit", "gradient.white"},
                                                         {"sharpen", "sharpness"}};
    for (const auto& [name, meant] : names) {
        fail(2, {"params", "--set", std::string(name) + "=1"}, std::string("did you mean \"") + meant);
    }
}

TEST_F(ParamsTest, WrongCommandLinesExitWithTwo) {
    const std::vector<std::string> lines[] = {{},
                                              {"frobnicate"},
                                              {"apply"},
                                              {"apply", ZQX_SAMPLE},
                                              {"apply", "-o", at("out.png")},
                                              {"apply", ZQX_SAMPLE, "extra.png", "-o", at("out.png")},
                                              {"apply", ZQX_SAMPLE, "-o", at("out.png"), "--frobnicate"},
                                              {"apply", ZQX_SAMPLE, "-o", at("a.png"), "-o", at("b.png")},
                                              {"apply", ZQX_SAMPLE, "-o", at("out.png"), "--quality", "0"},
                                              {"apply", ZQX_SAMPLE, "-o", at("out.png"), "--quality", "101"},
                                              {"apply", ZQX_SAMPLE, "-o", at("out.png"), "--quality", "good"},
                                              {"apply", ZQX_SAMPLE, "-o", at("a.png"), "--before-after", at("a.png")},
                                              {"lut"},
                                              {"lut", "-o", at("out.cube"), "--size", "1"},
                                              {"lut", "-o", at("out.cube"), "--size", "257"},
                                              {"info"},
                                              {"params", "--set"},
                                              {"params", "--params"},
                                              {"params", "--json"},
                                              {"params", "--schema", "--json"},
                                              {"params", "--schema", "--explain"},
                                              {"params", "--explain", "--set", "hue=1"},
                                              {"params", "--schema", "--params", ZQX_LOOK},
                                              {"params", "--schema", "--strict"}};
    for (const std::vector<std::string>& line : lines) {
        const Outcome outcome = zqxImg(line);
        EXPECT_EQ(outcome.exitCode, 2) << ::testing::PrintToString(line);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err.substr(0, 9), "zqx-img: ") << outcome.err;
    }
    EXPECT_TRUE(files().empty());
}

TEST_F(ParamsTest, WrongOptionIsNamed) {
    fail(2, {"apply", ZQX_SAMPLE, "-o", at("out.png"), "--quality", "101"}, "--quality");
    fail(2, {"lut", "-o", at("out.cube"), "--size", "1"}, "--size");
    fail(2, {"apply", ZQX_SAMPLE}, "--output");
}

TEST_F(ParamsTest, SettingsAndDocumentsDoNotSwallowTheNextArgument) {
    succeed({"apply", "--set", "exposure=1", ZQX_SAMPLE, "-o", at("a.png")});
    succeed({"apply", "--params", ZQX_LOOK, ZQX_SAMPLE, "-o", at("b.png")});
    EXPECT_EQ(files(), (std::vector<std::string>{"a.png", "b.png"}));
}

TEST_F(ParamsTest, HelpExplainsCommandsAndAdjustments) {
    const Outcome program = zqxImg({"--help"});
    EXPECT_EQ(program.exitCode, 0);
    for (const char* word : {"apply", "params", "lut", "info", "Examples:", "Exit codes:"}) {
        EXPECT_NE(program.out.find(word), std::string::npos) << word;
    }
    const Outcome apply = zqxImg({"apply", "--help"});
    EXPECT_EQ(apply.exitCode, 0);
    for (const Range& range : RANGES) {
        const std::string line = std::string("  ") + range.name + " ";
        const std::size_t place = apply.out.find(line);
        ASSERT_NE(place, std::string::npos) << range.name;
        const std::string text = apply.out.substr(place, apply.out.find('\n', place) - place);
        EXPECT_NE(text.find(std::string(range.minimum) + " to " + range.maximum), std::string::npos) << text;
    }
    EXPECT_EQ(apply.err, "");
}

TEST_F(ParamsTest, VersionNamesTheDecoderToo) {
    const Outcome outcome = zqxImg({"--version"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out.substr(0, 8), "zqx-img ");
    EXPECT_NE(outcome.out.find(std::string("FreeImage ") + FreeImage_GetVersion()), std::string::npos);
}

} // namespace zqx::img::test
