// Names of outputs that would mislead, or cost the user a file: refused before any work.
#include <filesystem>

#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace fs = std::filesystem;

namespace {

class OutputNameTest : public ProgramTest {
protected:
    OutputNameTest() {
        writePicture(at("a.png"), paint(8, 8, 24, motley));
        writePicture(at("b.png"), paint(8, 8, 24, [](unsigned x, unsigned) {
                         return Rgba{static_cast<int>(x), 9, 9};
                     }));
        fs::copy_file(ZQX_LOOK, at("look.json"));
        // A document does not need an extension of its own to be read.
        fs::copy_file(ZQX_LOOK, at("look.png"));
        fs::copy_file(ZQX_LOOK, at("look.cube"));
        for (const std::string& name : files()) {
            mBefore.emplace_back(name, readFile(at(name)));
        }
    }

    /// Expects exit code 2, a line that begins with the output's name, and every file as it was.
    void refuse(const std::vector<std::string>& arguments, const std::string& name, const std::string& words) {
        fail(2, arguments, at(name) + ": " + words);
        std::vector<std::pair<std::string, std::string>> now;
        for (const std::string& file : files()) {
            now.emplace_back(file, readFile(at(file)));
        }
        EXPECT_TRUE(now == mBefore);
    }

private:
    std::vector<std::pair<std::string, std::string>> mBefore;
};

} // namespace

TEST_F(OutputNameTest, LookupTablesAreCubeFiles) {
    for (const char* name : {"out.png", "out", "out.json", "out.cube.txt"}) {
        refuse({"lut", "-o", at(name)}, name, "lookup tables are written in the .cube format");
    }
    succeed({"lut", "-o", at("out.CUBE"), "--size", "2"});
}

TEST_F(OutputNameTest, DocumentsAreNotWrittenUnderTheNameOfAPicture) {
    for (const char* name : {"out.png", "out.JPG", "out.exr", "out.cr2"}) {
        refuse({"params", "-o", at(name)}, name, "is the name of a picture");
        refuse({"params", "--schema", "-o", at(name)}, name, "is the name of a picture");
        refuse({"params", "--explain", "-o", at(name)}, name, "is the name of a picture");
    }
    succeed({"params", "--schema", "-o", at("schema.json")});
    succeed({"params", "--explain", "-o", at("reference.txt")});
}

TEST_F(OutputNameTest, PicturesAreNotWrittenUnderOtherNames) {
    for (const char* command : {"preview", "histogram"}) {
        for (const char* name : {"out.json", "out.cube", "out", "out.txt"}) {
            refuse({command, at("a.png"), "-o", at(name)}, name, "unknown picture extension");
        }
    }
}

TEST_F(OutputNameTest, FormatsThatAreNeverWrittenAreRefusedBeforeAnyWork) {
    for (const char* name : {"out.jxr", "out.wdp", "out.hdp", "out.cr2", "out.pcx"}) {
        fail(2, {"apply", at("none.png"), "-o", at(name)}, "files can be read but not written");
    }
    for (const char* command : {"apply", "preview", "denoise"}) {
        const std::string help = zqxImg({command, "--help"}).out;
        EXPECT_EQ(help.find("JPEG XR"), std::string::npos) << command;
    }
}

TEST_F(OutputNameTest, SecondOutputsOfApplyNeverReplaceAnInput) {
    refuse({"apply", at("a.png"), "-o", at("out.png"), "--before-after", at("a.png")}, "a.png",
           "would replace the input");
    refuse({"apply", at("a.png"), "-o", at("out.png"), "--params", at("look.png"), "--before-after", at("look.png")},
           "look.png", "would replace the input");
    refuse({"apply", at("a.png"), "-o", at("look.png"), "--params", at("look.png")}, "look.png",
           "would replace the input");
}

TEST_F(OutputNameTest, InputsAreRecognisedBehindLinks) {
    fs::create_symlink("a.png", at("link.png"));
    fail(2, {"apply", at("a.png"), "-o", at("out.png"), "--before-after", at("link.png")}, "would replace the input");
    fs::remove(at("link.png"));
    fs::create_hard_link(at("a.png"), at("link.png"));
    fail(2, {"compare", at("a.png"), at("b.png"), "--difference", at("link.png")}, "would replace the input");
    EXPECT_EQ(readFile(at("link.png")), readFile(at("a.png")));
}

TEST_F(OutputNameTest, DifferencePicturesNeverReplaceAnInput) {
    refuse({"compare", at("a.png"), at("b.png"), "--difference", at("a.png")}, "a.png", "would replace the input");
    refuse({"compare", at("a.png"), at("b.png"), "--difference", at("b.png")}, "b.png", "would replace the input");
}

TEST_F(OutputNameTest, PreviewsSheetsAndChartsNeverReplaceAnInput) {
    refuse({"preview", at("a.png"), "-o", at("a.png")}, "a.png", "would replace the input");
    refuse({"preview", at("a.png"), "-o", at("look.png"), "--params", at("look.png")}, "look.png",
           "would replace the input");
    refuse({"preview", at("a.png"), "-o", at("look.png"), "--sheet", at("look.png")}, "look.png",
           "would replace the input");
    refuse({"histogram", at("a.png"), "-o", at("a.png")}, "a.png", "would replace the input");
    refuse({"histogram", at("a.png"), "-o", at("look.png"), "--params", at("look.png")}, "look.png",
           "would replace the input");
}

TEST_F(OutputNameTest, TablesNeverReplaceADocument) {
    refuse({"lut", "-o", at("look.cube"), "--params", at("look.cube")}, "look.cube", "would replace the input");
}

TEST_F(OutputNameTest, DenoisedPicturesNeverReplaceAGuide) {
    const std::vector<std::string> command{"denoise",  at("a.png"),    "--albedo", at("b.png"),
                                           "--normal", at("look.png"), "-o"};
    for (const char* name : {"b.png", "look.png"}) {
        std::vector<std::string> arguments = command;
        arguments.push_back(at(name));
        refuse(arguments, name, "would replace the input");
    }
}

TEST_F(OutputNameTest, InputIsCheckedBeforeAnyWork) {
    writeFile(at("broken.png"), "no picture");
    fail(2, {"compare", at("broken.png"), at("b.png"), "--difference", at("b.png")}, "would replace the input");
    fail(2, {"histogram", at("broken.png"), "-o", at("broken.png")}, "would replace the input");
}

TEST_F(OutputNameTest, DocumentMayReplaceItself) {
    succeed({"params", "--params", at("look.json"), "--set", "exposure=1", "-o", at("look.json")});
    EXPECT_NE(readFile(at("look.json")).find("\"exposure\": 1.0"), std::string::npos);
}

} // namespace zqx::img::test
