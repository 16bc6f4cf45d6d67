// Invalid command lines: what is wrong with them, and what was probably meant.
#include <filesystem>

#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace fs = std::filesystem;

namespace {

class UsageTest : public ProgramTest {
protected:
    UsageTest() { writePicture(at("in.png"), paint(8, 8, 24, motley)); }

    /// The first line of what the program says of an invalid command line, without its name in front.
    static std::string getProblem(const std::vector<std::string>& arguments) {
        const Outcome outcome = zqxImg(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << outcome.err;
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err.substr(0, 9), "zqx-img: ");
        return outcome.err.substr(9, outcome.err.find('\n') - 9);
    }
};

} // namespace

TEST_F(UsageTest, MisspeltCommandGetsTheNearestOne) {
    EXPECT_EQ(getProblem({"histgram", at("in.png")}), "unknown command \"histgram\"; did you mean \"histogram\"?");
    EXPECT_EQ(getProblem({"Apply"}), "unknown command \"Apply\"; did you mean \"apply\"?");
    EXPECT_EQ(getProblem({"hist"}), "unknown command \"hist\"; did you mean \"histogram\"?");
    EXPECT_EQ(getProblem({"xyzzy"}), "unknown command \"xyzzy\"");
}

TEST_F(UsageTest, FileOrFolderInPlaceOfACommandHintsAtApply) {
    EXPECT_EQ(getProblem({at("in.png"), "-o", at("out.png")}),
              "\"" + at("in.png") + "\" is a file, not a command; did you mean \"zqx-img apply " + at("in.png") +
                  " -o FILE\"?");
    fs::create_directory(at("photos"));
    EXPECT_EQ(getProblem({at("photos")}), "\"" + at("photos") +
                                              "\" is a folder, not a command; did you mean \"zqx-img apply " +
                                              at("photos") + " --output-dir DIR\"?");
}

TEST_F(UsageTest, NoCommandAtAllIsTold) {
    const Outcome outcome = zqxImg({});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.err, "zqx-img: missing command\nzqx-img: see \"zqx-img --help\"\n");
}

TEST_F(UsageTest, AdjustmentAsAnOptionHintsAtSet) {
    const std::string in = at("in.png");
    const std::string out = at("out.png");
    EXPECT_EQ(getProblem({"apply", in, "-o", out, "--exposure", "1"}),
              "apply: unknown option \"--exposure\"; did you mean \"--set exposure=1\"?");
    EXPECT_EQ(getProblem({"apply", in, "-o", out, "--exposure", "-0.5"}),
              "apply: unknown option \"--exposure\"; did you mean \"--set exposure=-0.5\"?");
    EXPECT_EQ(getProblem({"preview", in, "-o", out, "--gradient.intensity=0.3"}),
              "preview: unknown option \"--gradient.intensity\"; did you mean \"--set gradient.intensity=0.3\"?");
    EXPECT_EQ(getProblem({"lut", "-o", at("out.cube"), "--temprature=5000"}),
              "lut: unknown option \"--temprature\"; did you mean \"--set temperature=5000\"?");
    EXPECT_EQ(getProblem({"histogram", in, "--flipX"}),
              "histogram: unknown option \"--flipX\"; did you mean \"--set flipX=VALUE\"?");
    EXPECT_EQ(getProblem({"--exposure", "1", in}),
              "unknown option \"--exposure\"; did you mean \"zqx-img apply ... --set exposure=1\"?");
}

TEST_F(UsageTest, EveryAdjustmentAsAnOptionHintsAtSet) {
    for (const char* name :
         {"invert", "exposure", "contrast", "highlight", "shadow", "temperature", "hue", "saturation",
          "gradient.intensity", "gradient.black", "gradient.white", "sharpness", "flipX", "flipY"}) {
        EXPECT_EQ(getProblem({"apply", at("in.png"), "-o", at("out.png"), std::string("--") + name, "1"}),
                  std::string("apply: unknown option \"--") + name + "\"; did you mean \"--set " + name + "=1\"?");
    }
}

TEST_F(UsageTest, UnknownOptionGetsTheNearestOneOfItsCommand) {
    const std::string in = at("in.png");
    EXPECT_EQ(getProblem({"apply", in, "-o", at("out.png"), "--qualty", "80"}),
              "apply: unknown option \"--qualty\"; did you mean \"--quality\"?");
    EXPECT_EQ(getProblem({"apply", in, "--output-directory", at("out")}),
              "apply: unknown option \"--output-directory\"; did you mean \"--output-dir\"?");
    EXPECT_EQ(getProblem({"info", in, "--jsn"}), "info: unknown option \"--jsn\"; did you mean \"--json\"?");
    EXPECT_EQ(getProblem({"info", in, "--xyzzy"}), "info: unknown option \"--xyzzy\"");
}

TEST_F(UsageTest, OptionOfAnotherCommandIsToldToBeOne) {
    EXPECT_EQ(getProblem({"info", at("in.png"), "--recursive"}),
              "info: unknown option \"--recursive\"; it is an option of \"zqx-img apply\"");
}

TEST_F(UsageTest, MissingAndSurplusArgumentsShowTheUsage) {
    const std::string in = at("in.png");
    EXPECT_EQ(getProblem({"compare", in}), "compare: missing B; usage: zqx-img compare [OPTIONS] A B");
    EXPECT_EQ(getProblem({"compare", in, in, "c.png"}),
              "compare: unexpected argument \"c.png\"; usage: zqx-img compare [OPTIONS] A B");
    EXPECT_EQ(getProblem({"lut"}), "lut: missing --output; usage: zqx-img lut [OPTIONS] -o FILE.cube");
    EXPECT_EQ(getProblem({"apply", in, "-o"}), "--output: missing FILE");
    EXPECT_EQ(getProblem({"apply", in, "-o", at("a.png"), "-o", at("b.png")}), "--output: given more than once");
}

TEST_F(UsageTest, WhatIsUnknownComesBeforeWhatIsMissing) {
    EXPECT_EQ(getProblem({"denoise", "--clor", at("in.png")}), "denoise: unknown option \"--clor\"");
}

TEST_F(UsageTest, ValuesAreRefusedWithWhatWouldDo) {
    const std::string in = at("in.png");
    EXPECT_EQ(getProblem({"apply", in, "-o", at("out.jpg"), "--quality", "101"}),
              "--quality: \"101\" is not a whole number from 1 to 100");
    EXPECT_EQ(getProblem({"apply", in, "--output-dir", at("out"), "--jobs", "many"}),
              "--jobs: \"many\" is not a whole number from 1 to 1024");
    EXPECT_EQ(getProblem({"preview", in, "--show=kity"}),
              "--show: \"kity\" is not one of best, kitty, iterm, sixel, symbols; did you mean \"kitty\"?");
}

TEST_F(UsageTest, SecondLineNamesTheHelpOfTheCommand) {
    EXPECT_TRUE(zqxImg({"apply", "--foo"}).err.ends_with("\nzqx-img: see \"zqx-img apply --help\"\n"));
    EXPECT_TRUE(zqxImg({"foo"}).err.ends_with("\nzqx-img: see \"zqx-img --help\"\n"));
}

TEST_F(UsageTest, HelpIsACommandToo) {
    const Outcome program = zqxImg({"help"});
    EXPECT_EQ(program.exitCode, 0) << program.err;
    EXPECT_EQ(program.out, zqxImg({"--help"}).out);
    const Outcome apply = zqxImg({"help", "apply"});
    EXPECT_EQ(apply.exitCode, 0) << apply.err;
    EXPECT_EQ(apply.out, zqxImg({"apply", "--help"}).out);
    EXPECT_NE(getProblem({"help", "histgram"}).find("did you mean \"histogram\"?"), std::string::npos);
}

TEST_F(UsageTest, FilesMayBeCalledLikeCommands) {
    writePicture(at("in.bmp"), paint(8, 8, 24, motley));
    fs::rename(at("in.bmp"), at("info"));
    const Outcome outcome = runCommand({"sh", "-c", "cd \"$1\" && exec \"$0\" info info", ZQX_PROGRAM, at("")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
}

TEST_F(UsageTest, ExitCodesAreInTheHelpOfEveryCommand) {
    for (const char* command :
         {"apply", "compare", "preview", "histogram", "denoise", "params", "lut", "info", "help"}) {
        EXPECT_NE(zqxImg({command, "--help"}).out.find("\nExit codes: 0 "), std::string::npos) << command;
    }
    EXPECT_NE(zqxImg({"--help"}).out.find("\nExit codes: 0 "), std::string::npos);
}

TEST_F(UsageTest, DecodingTimeIsAFiniteNumberAboveZero) {
    for (const char* command : {"apply", "preview", "histogram", "denoise"}) {
        for (const char* time : {"inf", "nan", "0", "-1", "-inf", "1e400", "", "1s", "0x10"}) {
            const std::string option = std::string("--decode-time=") + time;
            fail(2, {command, at("in.png"), "-o", at("out.png"), option}, "--decode-time: ");
        }
    }
    EXPECT_EQ(getProblem({"info", at("in.png"), "--decode-time", "nan"}),
              "--decode-time: \"nan\" is not a number of seconds from 0.001 to 1000000");
    EXPECT_EQ(files(), std::vector<std::string>{"in.png"});
}

} // namespace zqx::img::test
