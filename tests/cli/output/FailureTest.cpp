// What happens when something is wrong: clear words, the right exit code, and no file touched or left behind.
#include <filesystem>

#include <unistd.h>

#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace fs = std::filesystem;

namespace {

using FailureTest = ProgramTest;

/// Runs the program where no file may grow beyond eight blocks, which is how a full disk looks from inside.
Outcome withFullDisk(std::vector<std::string> arguments) {
    const std::vector<std::string> shell{"sh", "-c", "ulimit -f 8; exec \"$0\" \"$@\"", ZQX_PROGRAM};
    arguments.insert(arguments.begin(), shell.begin(), shell.end());
    return runCommand(arguments);
}

class CutShortTest : public ProgramTest, public ::testing::WithParamInterface<const char*> {};

} // namespace

TEST_F(FailureTest, MissingInput) {
    fail(1, {"apply", at("none.png"), "-o", at("out.png")}, at("none.png") + ": there is no such file");
    EXPECT_TRUE(files().empty());
}

TEST_F(FailureTest, DirectoryAsInput) {
    fs::create_directory(at("folder.png"));
    fail(1, {"apply", at("folder.png"), "-o", at("out.png")}, at("folder.png") + ": is a folder");
}

TEST_F(FailureTest, DirectoryAsOutput) {
    fs::create_directory(at("folder.png"));
    fail(1, {"apply", ZQX_SAMPLE, "-o", at("folder.png")}, at("folder.png") + ": is a folder");
}

TEST_F(FailureTest, UnreadableInput) {
    writePicture(at("in.png"), paint(2, 2, 24, motley));
    fs::permissions(at("in.png"), fs::perms::none);
    std::vector<std::string> command{ZQX_PROGRAM, "apply", at("in.png"), "-o", at("out.png")};
    if (geteuid() == 0) { // root reads everything, unless told that it may not
        const char* const asMortal[] = {"setpriv", "--bounding-set=-dac_override,-dac_read_search"};
        command.insert(command.begin(), std::begin(asMortal), std::end(asMortal));
    }
    const Outcome outcome = runCommand(command);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.err.find("cannot be opened (Permission denied)"), std::string::npos) << outcome.err;
}

TEST_F(FailureTest, ContentThatIsNoPicture) {
    writeFile(at("in.xyz"), "This is no picture, whatever one does.");
    fail(1, {"apply", at("in.xyz"), "-o", at("out.png")}, at("in.xyz") + ": is not a picture in a known format");
    writeFile(at("in.png"), "Neither is this.");
    fail(1, {"apply", at("in.png"), "-o", at("out.png")}, at("in.png") + ": cannot be read as PNG");
    writeFile(at("empty.jpg"), "");
    fail(1, {"apply", at("empty.jpg"), "-o", at("out.png")}, at("empty.jpg") + ": ");
    EXPECT_EQ(files(), (std::vector<std::string>{"empty.jpg", "in.png", "in.xyz"}));
}

TEST_F(FailureTest, UnknownOutputExtensionIsToldBeforeAnyWork) {
    for (const char* name : {"out.xyz", "out", "png"}) {
        fail(2, {"apply", at("none.png"), "-o", at(name)}, at(name) + ": unknown picture extension");
    }
    fail(2, {"apply", at("none.png"), "-o", at("out.psp.dds")}, "DDS files can be read but not written");
}

TEST_F(FailureTest, MissingOutputDirectoryIsToldBeforeAnyWork) {
    fail(1, {"apply", at("none.png"), "-o", at("no/such/out.png")}, "there is no folder " + at("no/such"));
}

TEST_F(FailureTest, PathThroughAFile) {
    writeFile(at("file"), "x");
    fail(1, {"apply", ZQX_SAMPLE, "-o", at("file/out.png")}, at("file/out.png"));
    fail(1, {"apply", at("file/in.png"), "-o", at("out.png")}, at("file/in.png"));
    EXPECT_EQ(files(), std::vector<std::string>{"file"});
}

TEST_F(FailureTest, UnwritableDirectory) {
    if (geteuid() == 0) { // not even root makes files there
        fail(1, {"apply", ZQX_SAMPLE, "-o", "/proc/out.png"}, "/proc/out.png: cannot be created");
        return;
    }
    fs::create_directory(at("locked"));
    fs::permissions(at("locked"), fs::perms(0555));
    fail(1, {"apply", ZQX_SAMPLE, "-o", at("locked/out.png")}, "cannot be written to the folder");
}

TEST_F(FailureTest, DeviceIsNotReplaced) {
    fs::create_symlink("/dev/full", at("full.png"));
    fail(1, {"apply", ZQX_SAMPLE, "-o", at("full.png")}, at("full.png") + ": is not a regular file");
    fs::create_symlink("/dev/full", at("full.cube"));
    fail(1, {"lut", "-o", at("full.cube")}, at("full.cube") + ": is not a regular file");
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
}

TEST_F(FailureTest, LinksInACircle) {
    fs::create_symlink("b.png", at("a.png"));
    fs::create_symlink("a.png", at("b.png"));
    fail(1, {"apply", ZQX_SAMPLE, "-o", at("a.png")}, "goes through too many symbolic links");
}

TEST_F(FailureTest, FullDiskLeavesTheOldFile) {
    for (const char* extension :
         {"png", "jpg", "tif", "bmp", "tga", "ppm", "webp", "psd", "exr", "pfm", "hdr", "jp2"}) {
        const std::string out = at(std::string("out.") + extension);
        writeFile(out, "precious");
        const Outcome outcome = withFullDisk({"apply", ZQX_SAMPLE, "-o", out});
        EXPECT_EQ(outcome.exitCode, 1) << extension;
        EXPECT_NE(outcome.err.find(out + ": could not be written (File too large)"), std::string::npos) << outcome.err;
        EXPECT_EQ(readFile(out), "precious") << extension;
        fs::remove(out);
        EXPECT_TRUE(files().empty()) << extension;
    }
}

TEST_F(FailureTest, FullDiskLeavesNoTable) {
    const Outcome outcome = withFullDisk({"lut", "-o", at("out.cube")});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.err.find("could not be written"), std::string::npos) << outcome.err;
    EXPECT_TRUE(files().empty());
}

TEST_F(FailureTest, FullStandardOutputIsNoticed) {
    const std::string in = at("in.png");
    writePicture(in, paint(4, 4, 24, motley));
    const std::vector<std::vector<std::string>> commands = {{"--help"},
                                                            {"--version"},
                                                            {"help"},
                                                            {"help", "lut"},
                                                            {"apply", "--help"},
                                                            {"params"},
                                                            {"info", in},
                                                            {"info", in, "--json"},
                                                            {"histogram", in},
                                                            {"histogram", in, "--json"},
                                                            {"compare", in, in},
                                                            {"compare", in, in, "--json"},
                                                            {"params", "--explain"},
                                                            {"params", "--schema"},
                                                            {"preview", in, "--show=symbols"},
                                                            {"apply", in, "-o", at("out.png"), "--json"}};
    for (const std::vector<std::string>& arguments : commands) {
        std::vector<std::string> shell{"sh", "-c", "exec \"$0\" \"$@\" > /dev/full", ZQX_PROGRAM};
        shell.insert(shell.end(), arguments.begin(), arguments.end());
        const Outcome outcome = runCommand(shell);
        EXPECT_EQ(outcome.exitCode, 1) << arguments.front();
        EXPECT_NE(outcome.err.find("zqx-img: standard output: could not be written"), std::string::npos)
            << arguments.front() << ": " << outcome.err;
    }
}

TEST_F(FailureTest, SecondPictureFailingLeavesTheFirstAsItWas) {
    writeFile(at("out.png"), "precious");
    writePicture(at("in.png"), paint(4, 4, 24, motley));
    fail(1, {"apply", at("in.png"), "-o", at("out.png"), "--before-after", at("both.wbmp")}, at("both.wbmp"));
    EXPECT_EQ(readFile(at("out.png")), "precious");
    EXPECT_EQ(files(), (std::vector<std::string>{"in.png", "out.png"}));
}

TEST_P(CutShortTest, LeavesTheOldFile) {
    const std::string whole = at(std::string("whole.") + GetParam());
    const std::string cut = at(std::string("cut.") + GetParam());
    ASSERT_EQ(zqxImg({"apply", ZQX_SAMPLE, "-o", whole}).exitCode, 0);
    const std::string content = readFile(whole);
    fs::remove(whole);
    for (const std::size_t size : {content.size() * 7 / 10, std::size_t{1000}, std::size_t{10}}) {
        writeFile(cut, content.substr(0, size));
        writeFile(at("out.png"), "precious");
        fail(1, {"apply", cut, "-o", at("out.png")}, cut + ": ");
        EXPECT_EQ(readFile(at("out.png")), "precious");
        // In place it would be worse still: the only copy of what is left.
        fail(1, {"apply", cut, "-o", cut}, cut + ": ");
        EXPECT_EQ(readFile(cut).size(), size);
        EXPECT_EQ(files(), (std::vector<std::string>{fs::path(cut).filename().string(), "out.png"}));
    }
}

INSTANTIATE_TEST_SUITE_P(EachFormat, CutShortTest,
                         ::testing::Values("png", "jpg", "tif", "bmp", "tga", "ppm", "gif", "webp", "exr", "pfm", "hdr",
                                           "jp2"),
                         [](const auto& test) { return std::string(test.param); });

TEST_F(FailureTest, AnAnimationIsNotReplacedByItsFirstFrame) {
    const std::string frame(",\0\0\0\0\1\0\1\0\0\2\2\x44\1\0", 15);
    const std::string screen("GIF89a\1\0\1\0\x80\0\0\1\2\3\4\5\6", 19);
    const std::string animation = screen + frame + frame + ";";
    writeFile(at("a.gif"), animation);
    fail(1, {"apply", at("a.gif"), "-o", at("a.gif")}, at("a.gif") + ": holds several pictures");
    EXPECT_EQ(readFile(at("a.gif")), animation);
    const Outcome outcome = zqxImg({"apply", at("a.gif"), "-o", at("b.gif")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_NE(outcome.err.find("only the first is used"), std::string::npos) << outcome.err;
}

TEST_F(FailureTest, JpegXrIsNotOfferedForWriting) {
    fail(2, {"apply", ZQX_SAMPLE, "-o", at("out.jxr")}, "JPEG-XR files can be read but not written");
}

TEST_F(FailureTest, DamagedContentIsToldInTheDecodersWords) {
    writePicture(at("in.png"), paint(64, 64, 24, motley));
    std::string content = readFile(at("in.png"));
    content[content.size() / 2] = static_cast<char>(~content[content.size() / 2]);
    writeFile(at("in.png"), content);
    fail(1, {"apply", at("in.png"), "-o", at("out.png")}, "cannot be read as PNG (");
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which need all the address space there is
/// Wherever it is that memory runs out.
TEST_F(FailureTest, LackOfMemoryIsNotCalledDamage) {
    const Bitmap picture = paint(3000, 3000, 24, motley);
    for (const char* name :
         {"in.ppm", "in.png", "in.jpg", "in.tif", "in.bmp", "in.psd", "in.tga", "in.webp", "in.jp2"}) {
        writePicture(at(name), picture);
        int failures = 0;
        for (const int mebibytes : {66, 74, 82, 90, 100, 120}) {
            const std::string script =
                "ulimit -v " + std::to_string(mebibytes * 1024) + "; exec \"$0\" apply \"$1\" -o \"$2\"";
            const Outcome outcome =
                runCommand({"env", "OMP_NUM_THREADS=1", "sh", "-c", script, ZQX_PROGRAM, at(name), at("out.ppm")});
            if (outcome.exitCode != 0) {
                EXPECT_EQ(outcome.exitCode, 1) << name << ", " << mebibytes << " MiB: " << outcome.err;
                EXPECT_NE(outcome.err.find("out of memory"), std::string::npos)
                    << name << ", " << mebibytes << " MiB: " << outcome.err;
                ++failures;
            }
        }
        EXPECT_GT(failures, 0) << name;
    }
}
#endif

TEST_F(FailureTest, PrintingInksAreConverted) {
    const Bitmap inks = paint(8, 8, 32, motley);
    FreeImage_GetICCProfile(inks.get())->flags |= FIICC_COLOR_IS_CMYK;
    writePicture(at("in.tif"), inks, TIFF_CMYK);
    const Outcome outcome = zqxImg({"apply", at("in.tif"), "-o", at("out.png")});
    // The decoder turns inks into RGB by itself; four channels of ink must never pass for colour with alpha.
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(FreeImage_GetBPP(readPicture(at("out.png")).get()), 24U);
}

} // namespace zqx::img::test
