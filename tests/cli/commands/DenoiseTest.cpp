// denoise: what is refused, and in which words. None of it needs the denoiser.
#include <filesystem>

#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace fs = std::filesystem;

namespace {

class DenoiseTest : public ProgramTest {
protected:
    DenoiseTest() {
        for (const char* name : {"color.png", "albedo.png", "normal.png"}) {
            writePicture(at(name), paint(20, 10, 24, motley));
        }
        writeFile(at("out.png"), "precious");
    }

    /// The command line that denoises with guides from the test's directory.
    std::vector<std::string> denoise(const std::string& color, const std::string& albedo,
                                     const std::string& normal) const {
        return {"denoise", at(color), "--albedo", at(albedo), "--normal", at(normal), "-o", at("out.png")};
    }

    /// Expects a refusal that leaves everything as it was.
    void refuse(const std::vector<std::string>& arguments, const std::string& words) const {
        const std::vector<std::string> before = files();
        fail(1, arguments, words);
        EXPECT_EQ(readFile(at("out.png")), "precious");
        EXPECT_EQ(files(), before);
    }
};

} // namespace

TEST_F(DenoiseTest, MissingAlbedoIsInvalidInput) {
    refuse({"denoise", at("color.png"), "--normal", at("normal.png"), "-o", at("out.png")},
           "--albedo: Invalid Input: the denoiser needs both guides; give --albedo and --normal\n");
}

TEST_F(DenoiseTest, MissingNormalIsInvalidInput) {
    refuse({"denoise", at("color.png"), "--albedo", at("albedo.png"), "-o", at("out.png")},
           "--normal: Invalid Input: the denoiser needs both guides; give --albedo and --normal\n");
}

TEST_F(DenoiseTest, ColorAloneIsInvalidInput) {
    refuse({"denoise", at("color.png"), "-o", at("out.png")}, "Invalid Input");
}

TEST_F(DenoiseTest, AlbedoOfAnotherSize) {
    writePicture(at("albedo.png"), paint(21, 10, 24, motley));
    refuse(denoise("color.png", "albedo.png", "normal.png"),
           at("albedo.png") + ": is 21 x 10, but the colour picture is 20 x 10; both must be of the same size\n");
}

TEST_F(DenoiseTest, NormalOfAnotherSize) {
    writePicture(at("normal.png"), paint(20, 9, 24, motley));
    refuse(denoise("color.png", "albedo.png", "normal.png"),
           at("normal.png") + ": is 20 x 9, but the colour picture is 20 x 10; both must be of the same size\n");
}

TEST_F(DenoiseTest, SizesAreComparedUpright) {
    writeOrientedJpeg(at("color.jpg"), 20, 10, 6);
    refuse(denoise("color.jpg", "albedo.png", "normal.png"),
           at("albedo.png") + ": is 20 x 10, but the colour picture is 10 x 20; both must be of the same size\n");
}

TEST_F(DenoiseTest, MissingFiles) {
    const std::string words = at("none.png") + ": there is no such file";
    refuse(denoise("none.png", "albedo.png", "normal.png"), words);
    refuse(denoise("color.png", "none.png", "normal.png"), words);
    refuse(denoise("color.png", "albedo.png", "none.png"), words);
}

TEST_F(DenoiseTest, GuideThatIsNoPicture) {
    writeFile(at("normal.png"), "This is no picture, whatever one does.");
    refuse(denoise("color.png", "albedo.png", "normal.png"), at("normal.png") + ": cannot be read as PNG");
}

TEST_F(DenoiseTest, OutputIsCheckedBeforeAnyWork) {
    const std::vector<std::string> command{"denoise",  at("none.png"), "--albedo", at("none.png"),
                                           "--normal", at("none.png"), "-o"};
    std::vector<std::string> nameless = command;
    nameless.push_back(at("out.xyz"));
    fail(2, nameless, at("out.xyz") + ": unknown picture extension");
    std::vector<std::string> homeless = command;
    homeless.push_back(at("no/such/out.png"));
    fail(1, homeless, "there is no folder " + at("no/such"));
}

TEST_F(DenoiseTest, ColorIsEitherLinearOrDisplayReferred) {
    std::vector<std::string> command = denoise("color.png", "albedo.png", "normal.png");
    command.insert(command.end(), {"--hdr", "--ldr"});
    fail(2, command, "--hdr cannot be combined with --ldr");
    EXPECT_EQ(readFile(at("out.png")), "precious");
}

TEST_F(DenoiseTest, MissingLibraryIsToldInTheFiltersWords) {
    // A copy of our library finds nothing beside it but files that no loader takes. They also hide what the system has.
    const fs::path place = at("place");
    fs::create_directory(place);
    fs::copy_file(ZQX_LIBRARY, place / fs::path(ZQX_LIBRARY).filename());
    writeFile(place / "libOpenImageDenoise.so.1", "not a library");
    writeFile(place / "libOpenImageDenoise.so.2", "not a library");
    std::vector<std::string> command = denoise("color.png", "albedo.png", "normal.png");
    command.insert(command.begin(), {"env", "LD_LIBRARY_PATH=" + place.string(), ZQX_PROGRAM});
    const Outcome outcome = runCommand(command);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.err.find("zqx-img: " + at("color.png") + ": Denoising needs OpenImageDenoise, version 1 or 2"),
              0U)
        << outcome.err;
    EXPECT_EQ(readFile(at("out.png")), "precious");
    EXPECT_EQ(files(), (std::vector<std::string>{"albedo.png", "color.png", "normal.png", "out.png", "place"}));
}

TEST_F(DenoiseTest, HelpTellsHowValuesAreRead) {
    const Outcome outcome = zqxImg({"denoise", "--help"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_NE(outcome.out.find("8-bit and 16-bit pictures are decoded to linear light"), std::string::npos)
        << outcome.out;
    EXPECT_NE(outcome.out.find("0 is -1 and the largest is 1"), std::string::npos) << outcome.out;
}

} // namespace zqx::img::test
