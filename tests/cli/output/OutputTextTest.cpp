// Text that leaves the program: whatever file names hold, a terminal obeys nothing of it, a line stays a line, JSON
// stays JSON; and what cannot be written is an error.
#include <algorithm>
#include <filesystem>
#include <sstream>

#include <rapidjson/document.h>

#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace fs = std::filesystem;

namespace {

/// A colour, a line of the program's own, a byte that is not UTF-8, a control above ASCII, and writing from the right.
const std::string NAME = "a\x1B[31m\nzqx-img: b\xFF\xC2\x9B\u202Egpj";
const std::string SHOWN = "a\\x1B[31m\\nzqx-img: b\\xFF\\x9B\\u202Egpj";
const std::string REPAIRED = "a\x1B[31m\nzqx-img: b\uFFFD\u009B\u202Egpj";

class OutputTextTest : public ProgramTest {
protected:
    OutputTextTest() { writePicture(picture(), paint(8, 6, 24, motley)); }

    std::string picture() const { return at(NAME + ".png"); }
    std::string shownPicture() const { return at(SHOWN + ".png"); }

    static void expectClean(const std::string& text) {
        for (const char* harmful : {"\x1B", "\xFF", "\xC2\x9B", "\u202E", "\nzqx-img: b"}) {
            EXPECT_EQ(text.find(harmful), std::string::npos) << text;
        }
    }

    /// One line on standard error, with the name as it is shown.
    static void expectComplaint(const std::vector<std::string>& arguments, int exitCode, const std::string& words) {
        const Outcome outcome = zqxImg(arguments);
        EXPECT_EQ(outcome.exitCode, exitCode) << outcome.err;
        EXPECT_TRUE(outcome.err.starts_with("zqx-img: ")) << outcome.err;
        EXPECT_NE(outcome.err.find(words), std::string::npos) << outcome.err;
        expectClean(outcome.err);
        expectClean(outcome.out);
    }

    static rapidjson::Document parse(const std::string& json) {
        rapidjson::Document document;
        document.Parse<rapidjson::kParseValidateEncodingFlag>(json.c_str());
        EXPECT_FALSE(document.HasParseError()) << json;
        expectClean(json);
        return document;
    }
};

/// Runs the program by a shell, which may do something to its streams.
Outcome withShell(const std::string& script, const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"sh", "-c", script, ZQX_PROGRAM};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return runCommand(command);
}

const std::string UNWRITABLE = "zqx-img: standard output: could not be written\n";

} // namespace

TEST_F(OutputTextTest, ErrorsShowNamesWithoutObeyingThem) {
    const std::string none = at(NAME + ".tif");
    const std::string words = at(SHOWN + ".tif") + ": there is no such file";
    expectComplaint({"info", none}, 1, words);
    expectComplaint({"histogram", none}, 1, words);
    expectComplaint({"compare", none, none}, 1, words);
    expectComplaint({"preview", none, "-o", at("out.png")}, 1, words);
    expectComplaint({"apply", none, "-o", at("out.png")}, 1, words);
    expectComplaint({"params", "--params", none}, 1, words);
    expectComplaint({"lut", "--params", none, "-o", at("out.cube")}, 1, words);
    expectComplaint({"apply", picture(), "-o", at("no" + NAME) + "/out.png"}, 1,
                    "there is no folder " + at("no" + SHOWN));
    expectComplaint({"apply", picture(), "-o", at(NAME)}, 2, at(SHOWN) + ": unknown picture extension");
}

TEST_F(OutputTextTest, ErrorsOfTheCommandLineAreCleanToo) {
    expectComplaint({"apply", ZQX_SAMPLE, "-o", at("out.png"), "--no" + NAME}, 2, SHOWN);
    expectComplaint({"info", picture(), NAME}, 2, SHOWN);
    expectComplaint({"params", "--set", NAME + "=1"}, 2, SHOWN);
}

#if defined(ZQX_DECODER)
TEST_F(OutputTextTest, WordsOfTheDecodersProcessHaveTheNameOnce) {
    writeFile(picture(), "this is no picture");
    const Outcome outcome = zqxImg({"apply", picture(), "-o", at("out.png"), "--isolate"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_TRUE(outcome.err.starts_with("zqx-img: " + shownPicture() + ": cannot be read as PNG")) << outcome.err;
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    expectClean(outcome.err);
}
#endif

TEST_F(OutputTextTest, WarningsAndStrictRemarksStayLines) {
    const std::string document = at(NAME + ".json");
    writeFile(document, R"({"imageProcessing": {"version": 1, "flipZ": true, "flipQ": true}})");
    const Outcome warned = zqxImg({"params", "--params", document});
    EXPECT_EQ(warned.exitCode, 0) << warned.err;
    EXPECT_TRUE(warned.err.starts_with("zqx-img: warning: " + at(SHOWN + ".json") + ": ")) << warned.err;
    EXPECT_EQ(std::count(warned.err.begin(), warned.err.end(), '\n'), 2) << warned.err;
    expectClean(warned.err);
    const Outcome strict = zqxImg({"params", "--params", document, "--strict"});
    EXPECT_EQ(strict.exitCode, 1);
    EXPECT_EQ(std::count(strict.err.begin(), strict.err.end(), '\n'), 3) << strict.err;
    EXPECT_NE(strict.err.find("\nzqx-img: " + at(SHOWN + ".json") + ": "), std::string::npos) << strict.err;
    expectClean(strict.err);
}

TEST_F(OutputTextTest, RehearsalListsEachPictureInALine) {
    const Outcome outcome = zqxImg({"apply", picture(), "--output-dir", at("out"), "--dry-run"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(outcome.out, shownPicture() + " -> " + at("out/" + SHOWN + ".png") + "\n");
}

TEST_F(OutputTextTest, VerboseRunIsClean) {
    writePicture(at("b.png"), paint(8, 6, 24, motley));
    const Outcome outcome = zqxImg({"apply", picture(), at("b.png"), "--output-dir", at("out"), "--verbose"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_NE(outcome.err.find(shownPicture() + " -> "), std::string::npos) << outcome.err;
    expectClean(outcome.err);
}

TEST_F(OutputTextTest, RecordsOfARunAreValid) {
    const Outcome outcome = zqxImg(
        {"apply", picture(), at(NAME + ".tif"), "--output-dir", at("out"), "--name", "{stem}_{n}.png", "--json"});
    EXPECT_EQ(outcome.exitCode, 1);
    std::istringstream lines(outcome.out);
    int named = 0;
    for (std::string line; std::getline(lines, line);) {
        const rapidjson::Document record = parse(line);
        named += record.HasMember("input") && std::string(record["input"].GetString()).starts_with(at(REPAIRED));
    }
    EXPECT_EQ(named, 2) << outcome.out;
    expectClean(outcome.err);
}

TEST_F(OutputTextTest, HistogramIsCleanInBothForms) {
    const Outcome text = zqxImg({"histogram", picture()});
    EXPECT_TRUE(text.out.starts_with(SHOWN + ".png  8 x 6")) << text.out;
    expectClean(text.out);
    const Outcome json = zqxImg({"histogram", picture(), "--json"});
    EXPECT_EQ(parse(json.out)["file"].GetString(), at(REPAIRED + ".png"));
}

TEST_F(OutputTextTest, ComparisonIsCleanInBothForms) {
    const Outcome text = zqxImg({"compare", picture(), picture()});
    EXPECT_EQ(text.exitCode, 0) << text.err;
    EXPECT_NE(text.out.find("first               " + shownPicture() + ", 8 x 6"), std::string::npos) << text.out;
    expectClean(text.out);
    const Outcome json = zqxImg({"compare", picture(), picture(), "--json"});
    EXPECT_EQ(parse(json.out)["a"]["file"].GetString(), at(REPAIRED + ".png"));
    const Outcome different = zqxImg({"compare", picture(), ZQX_SAMPLE});
    EXPECT_EQ(different.exitCode, 4);
    EXPECT_TRUE(different.out.starts_with(shownPicture() + " is 8 x 6, ")) << different.out;
    expectClean(different.out);
}

TEST_F(OutputTextTest, InfoIsCleanInBothForms) {
    const Outcome text = zqxImg({"info", picture()});
    EXPECT_TRUE(text.out.starts_with("file            " + shownPicture() + "\n")) << text.out;
    expectClean(text.out);
    const Outcome json = zqxImg({"info", picture(), "--json"});
    EXPECT_EQ(parse(json.out)["file"].GetString(), at(REPAIRED + ".png"));
}

TEST_F(OutputTextTest, OrdinaryNamesAreShownAsTheyAre) {
    const std::string name = at("Größe 日本 'x' \\n.png");
    EXPECT_EQ(zqxImg({"info", name}).err, "zqx-img: " + name + ": there is no such file; check the name\n");
}

TEST_F(OutputTextTest, FullDiskBehindStandardOutputIsAnErrorEverywhere) {
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"--help"},
                                               {"--version"},
                                               {"apply", "--help"},
                                               {"params"},
                                               {"params", "--explain"},
                                               {"info", ZQX_SAMPLE},
                                               {"info", ZQX_SAMPLE, "--json"},
                                               {"histogram", ZQX_SAMPLE},
                                               {"compare", ZQX_SAMPLE, ZQX_SAMPLE},
                                               {"compare", ZQX_SAMPLE, ZQX_SAMPLE, "--json"},
                                               {"apply", ZQX_SAMPLE, "-o", at("out.png"), "--dry-run"}}) {
        const Outcome outcome = withShell("exec \"$0\" \"$@\" > /dev/full", arguments);
        EXPECT_EQ(outcome.exitCode, 1) << arguments.front();
        EXPECT_EQ(outcome.err, UNWRITABLE) << arguments.front();
    }
}

TEST_F(OutputTextTest, ClosedStandardOutputIsAnError) {
    for (const std::vector<std::string>& arguments :
         std::vector<std::vector<std::string>>{{"--help"}, {"--version"}, {"params"}, {"info", ZQX_SAMPLE}}) {
        const Outcome outcome = withShell("exec \"$0\" \"$@\" >&-", arguments);
        EXPECT_EQ(outcome.exitCode, 1) << arguments.front();
        EXPECT_EQ(outcome.err, UNWRITABLE) << arguments.front();
    }
}

TEST_F(OutputTextTest, PipeThatNobodyReadsIsAnError) {
    // A pipe that is open at both ends, of which the one for reading is closed.
    const std::string script = "mkfifo \"$1\"; exec 3<>\"$1\" 4>\"$1\" 3<&-; shift; exec \"$0\" \"$@\" >&4 4>&-";
    for (const char* argument : {"--help", "--version", "params"}) {
        const Outcome outcome = withShell(script, {at(std::string("pipe") + argument), argument});
        EXPECT_EQ(outcome.exitCode, 1) << argument;
        EXPECT_EQ(outcome.err, UNWRITABLE) << argument;
    }
}

TEST_F(OutputTextTest, RecordsNeverEndUpInAnOutputFile) {
    // Without standard output and standard error, the next file that is opened must not get their numbers.
    const Outcome outcome =
        withShell("exec \"$0\" \"$@\" >&- 2>&- <&-", {"apply", ZQX_SAMPLE, "-o", at("out.png"), "--json", "--verbose"});
    EXPECT_EQ(outcome.exitCode, 1);
    if (fs::exists(at("out.png"))) {
        EXPECT_TRUE(isIdentical(readPicture(at("out.png")), readPicture(ZQX_SAMPLE)));
    }
}

TEST_F(OutputTextTest, DocumentsComeThroughPipesPicturesDoNot) {
    const Outcome document = withShell("exec \"$0\" params --params /dev/stdin < \"$1\"", {ZQX_LOOK});
    EXPECT_EQ(document.exitCode, 0) << document.err;
    const Outcome piped = withShell("cat \"$1\" | \"$0\" params --params /dev/stdin", {ZQX_LOOK});
    EXPECT_EQ(piped.exitCode, 0) << piped.err;
    EXPECT_EQ(piped.out, document.out);
    const Outcome picture = withShell("cat \"$1\" | \"$0\" info /dev/stdin", {ZQX_SAMPLE});
    EXPECT_EQ(picture.exitCode, 1);
    EXPECT_NE(picture.err.find("/dev/stdin: is a pipe, and pictures cannot be read from pipes"), std::string::npos)
        << picture.err;
    fail(1, {"info", "/dev/null"}, "/dev/null: is a device; name a file");
    fail(1, {"params", "--params", "/dev/null"}, "/dev/null: is a device; name a file");
}

} // namespace zqx::img::test
