// Which files a folder stands for, and in which order.
#include <filesystem>

#include <zqx/tools/InputList.h>

#include <support/DirectoryTest.h>
#include <support/Process.h>

namespace zqx::tools {

namespace fs = std::filesystem;

namespace {

class InputListTest : public img::test::DirectoryTest {
protected:
    void make(const std::string& name) const {
        fs::create_directories(fs::path(at(name)).parent_path());
        img::test::writeFile(at(name), "x");
    }

    /// "folder|file" of each input, below the test's directory.
    std::vector<std::string> list(const std::vector<std::string>& names, bool recursive,
                                  const std::string& excluded = "") {
        std::vector<std::string> full;
        for (const std::string& name : names) {
            full.push_back(at(name));
        }
        const InputList found = listInputs(full, recursive, excluded.empty() ? "" : at(excluded));
        unreadable = describeUnreadable(found.unreadable);
        failures.clear();
        for (const auto& [name, reason] : found.failures) {
            failures.push_back(name + ": " + reason);
        }
        std::vector<std::string> result;
        for (const Input& input : found.inputs) {
            result.push_back(input.folder + "|" + fs::path(input.name).lexically_relative(at("")).string());
        }
        return result;
    }

    std::vector<std::string> failures;
    std::string unreadable;
};

using Names = std::vector<std::string>;

} // namespace

TEST_F(InputListTest, FolderStandsForItsPicturesInTheOrderOfTheirNames) {
    for (const char* name : {"in/b.png", "in/a.JPEG", "in/10.tif", "in/notes.txt", "in/png", "in/c.exr"}) {
        make(name);
    }
    EXPECT_EQ(list({"in"}, false), (Names{"|in/10.tif", "|in/a.JPEG", "|in/b.png", "|in/c.exr"}));
    EXPECT_TRUE(failures.empty());
}

TEST_F(InputListTest, HiddenFilesAndFoldersAreLeftAlone) {
    for (const char* name : {"in/.a.png", "in/.cache/b.png", "in/c.png"}) {
        make(name);
    }
    EXPECT_EQ(list({"in"}, true), Names{"|in/c.png"});
}

TEST_F(InputListTest, FoldersInFoldersAreForRecursiveRuns) {
    for (const char* name : {"in/a.png", "in/sub/b.png", "in/sub/deep/c.png", "in/z.png"}) {
        make(name);
    }
    EXPECT_EQ(list({"in"}, false), (Names{"|in/a.png", "|in/z.png"}));
    EXPECT_EQ(list({"in"}, true), (Names{"|in/a.png", "sub|in/sub/b.png", "sub/deep|in/sub/deep/c.png", "|in/z.png"}));
}

TEST_F(InputListTest, NamedFilesAreTakenAsTheyAre) {
    make("in/picture");
    make("in/.hidden.png");
    EXPECT_EQ(list({"in/picture", "in/.hidden.png"}, false), (Names{"|in/picture", "|in/.hidden.png"}));
}

TEST_F(InputListTest, LinksToFoldersEndTheSearchAndLinksToFilesDoNot) {
    make("in/a.png");
    fs::create_directory_symlink("..", at("in/up"));
    fs::create_symlink("a.png", at("in/link.png"));
    fs::create_symlink("nowhere.png", at("in/broken.png"));
    EXPECT_EQ(list({"in"}, true), (Names{"|in/a.png", "|in/link.png"}));
}

TEST_F(InputListTest, NamedLinkToAFolderIsFollowed) {
    make("in/a.png");
    fs::create_directory_symlink("in", at("link"));
    EXPECT_EQ(list({"link"}, true), Names{"|link/a.png"});
}

TEST_F(InputListTest, OutputFolderBelowIsLeftOut) {
    make("in/a.png");
    make("in/out/a.png");
    make("in/other/a.png");
    EXPECT_EQ(list({"in"}, true, "in/out"), (Names{"|in/a.png", "other|in/other/a.png"}));
}

TEST_F(InputListTest, MissingInputIsAFailureOfItsOwn) {
    make("a.png");
    EXPECT_EQ(list({"none.png", "a.png"}, false), Names{"|a.png"});
    EXPECT_EQ(failures, Names{at("none.png") + ": there is no such file; check the name"});
}

TEST_F(InputListTest, PicturesInFormatsThatCannotBeReadAreCountedByExtension) {
    for (const char* name : {"in/a.png", "in/b.avif", "in/c.HEIC", "in/d.heic", "in/sub/e.jxl", "in/notes.txt"}) {
        make(name);
    }
    EXPECT_EQ(list({"in"}, false), Names{"|in/a.png"});
    EXPECT_EQ(unreadable, "skipped 3 files in formats this build cannot read: 2 .heic, 1 .avif");
    list({"in"}, true);
    EXPECT_EQ(unreadable, "skipped 4 files in formats this build cannot read: 2 .heic, 1 .avif, 1 .jxl");
    EXPECT_TRUE(failures.empty());
    list({"in/a.png"}, false);
    EXPECT_EQ(unreadable, "");
}

TEST_F(InputListTest, FolderOfUnreadablePicturesSaysSo) {
    make("in/a.heic");
    list({"in"}, true);
    EXPECT_EQ(unreadable, "skipped 1 file in a format this build cannot read: 1 .heic");
    EXPECT_EQ(failures, Names{at("in") + ": contains no pictures that this build can read"});
}

TEST_F(InputListTest, FolderWithoutPicturesIsAFailure) {
    make("in/notes.txt");
    make("in/sub/a.png");
    list({"in"}, false);
    EXPECT_EQ(failures, Names{at("in") + ": contains no pictures; use --recursive to include its subfolders"});
    fs::remove(at("in/sub/a.png"));
    list({"in"}, true);
    EXPECT_EQ(failures, Names{at("in") + ": contains no pictures"});
}

} // namespace zqx::tools
