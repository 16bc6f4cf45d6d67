// Files appear whole or not at all, several of them together; what is to be kept is kept.
#include <array>
#include <chrono>
#include <filesystem>

#include "zqx/pictures/files/OutputFile.h"
#include "zqx/pictures/files/TemporaryFiles.h"

#include <support/DirectoryTest.h>
#include <support/Process.h>

#if !defined(_WIN32)
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace zqx::pictures {

namespace fs = std::filesystem;

namespace {

/// A name of the kind that temporary files have.
constexpr const char* STALE = ".zqx-img-Ab3dE6.tmp";

void makeOld(const std::string& name, std::chrono::hours age) {
    fs::last_write_time(name, fs::file_time_type::clock::now() - age);
}

/// Commits two files with the same text, and says how that ended.
std::string commitBoth(OutputFile& first, OutputFile& second) {
    first.write("new");
    second.write("new");
    const std::array<OutputFile*, 2> both{&first, &second};
    try {
        OutputFile::commitTogether(both);
        return "done";
    } catch (const Error& error) {
        return error.what();
    }
}

using OutputFileTest = img::test::DirectoryTest;
using Names = std::vector<std::string>;

} // namespace

TEST_F(OutputFileTest, FileThatAppearedMeanwhileIsKept) {
    OutputFile file(at("out"), OutputFile::Existing::KEEP);
    file.write("new");
    img::test::writeFile(at("out"), "precious");
    EXPECT_THROW(file.commit(), FileExists);
    EXPECT_EQ(img::test::readFile(at("out")), "precious");
    EXPECT_EQ(files(), Names{"out"});
}

TEST_F(OutputFileTest, KeepingStillWritesWhereThereIsNothing) {
    OutputFile file(at("out"), OutputFile::Existing::KEEP);
    file.write("new");
    file.commit();
    EXPECT_EQ(img::test::readFile(at("out")), "new");
    EXPECT_EQ(files(), Names{"out"});
}

TEST_F(OutputFileTest, ReplacingReplacesWhatAppearedMeanwhile) {
    OutputFile file(at("out"));
    file.write("new");
    img::test::writeFile(at("out"), "old");
    file.commit();
    EXPECT_EQ(img::test::readFile(at("out")), "new");
}

TEST_F(OutputFileTest, UncommittedFileLeavesNothing) {
    {
        OutputFile file(at("out"));
        file.write("new");
        EXPECT_EQ(files().size(), 1U); // the temporary one
    }
    EXPECT_EQ(files(), Names{});
}

TEST_F(OutputFileTest, TwoFilesAppearTogether) {
    img::test::writeFile(at("a"), "old");
    OutputFile a(at("a"));
    OutputFile b(at("b"));
    EXPECT_EQ(commitBoth(a, b), "done");
    EXPECT_EQ(img::test::readFile(at("a")), "new");
    EXPECT_EQ(img::test::readFile(at("b")), "new");
    EXPECT_EQ(files(), (Names{"a", "b"}));
}

TEST_F(OutputFileTest, SecondFileFailingBringsTheReplacedFirstOneBack) {
    img::test::writeFile(at("a"), "precious");
    OutputFile a(at("a"));
    OutputFile b(at("b"));
    fs::create_directory(at("b")); // over which no file can be renamed
    const std::string outcome = commitBoth(a, b);
    EXPECT_TRUE(outcome.starts_with(at("b") + ": could not be moved into place (")) << outcome;
    EXPECT_TRUE(outcome.ends_with("); nothing was changed")) << outcome;
    EXPECT_EQ(img::test::readFile(at("a")), "precious");
    EXPECT_EQ(files(), (Names{"a", "b"}));
}

TEST_F(OutputFileTest, SecondFileFailingRemovesTheNewFirstOne) {
    OutputFile a(at("a"));
    OutputFile b(at("b"));
    fs::create_directory(at("b"));
    EXPECT_TRUE(commitBoth(a, b).ends_with("); nothing was changed"));
    EXPECT_EQ(files(), Names{"b"});
}

TEST_F(OutputFileTest, SecondFileThatIsToBeKeptTakesTheFirstOneBack) {
    OutputFile a(at("a"), OutputFile::Existing::KEEP);
    OutputFile b(at("b"), OutputFile::Existing::KEEP);
    img::test::writeFile(at("b"), "precious");
    EXPECT_EQ(commitBoth(a, b), at("b") + ": already exists and was left as it is");
    EXPECT_EQ(img::test::readFile(at("b")), "precious");
    EXPECT_EQ(files(), Names{"b"});
}

TEST_F(OutputFileTest, TemporaryFileThatAKilledRunLeftIsRemoved) {
    img::test::writeFile(at(STALE), "half");
    makeOld(at(STALE), std::chrono::hours(25));
    OutputFile file(at("out"));
    file.commit();
    EXPECT_EQ(files(), Names{"out"});
}

TEST_F(OutputFileTest, YoungTemporaryFileStays) {
    img::test::writeFile(at(STALE), "half");
    makeOld(at(STALE), std::chrono::hours(23));
    OutputFile(at("out")).commit();
    EXPECT_EQ(files(), (Names{STALE, "out"}));
}

TEST_F(OutputFileTest, OldFilesOfOtherNamesStay) {
    const Names names{".zqx-img-Ab3dE.tmp",  ".zqx-img-Ab3dE6", ".zqx-img-Ab3dE6.tmp.jpg",
                      ".zqx-img-Ab.dE6.tmp", ".zqx-img.tmp",    "Ab3dE6.tmp"};
    for (const std::string& name : names) {
        img::test::writeFile(at(name), "mine");
        makeOld(at(name), std::chrono::hours(1000));
    }
    { const OutputFile file(at("out")); }
    EXPECT_EQ(files().size(), names.size());
}

#if !defined(_WIN32)

TEST_F(OutputFileTest, TemporaryFileInUseStaysHoweverOld) {
    OutputFile slow(at("slow"));
    const std::string temporary = files().at(0);
    makeOld(at(temporary), std::chrono::hours(1000));
    // Another process would look into the folder for the first time; this one has done so.
    const int other = open(at(temporary).c_str(), O_RDONLY);
    EXPECT_NE(flock(other, LOCK_EX | LOCK_NB), 0);
    removeIfAbandoned(at(temporary), std::chrono::hours(24));
    EXPECT_EQ(files(), Names{temporary});
    slow.commit();
    EXPECT_EQ(flock(other, LOCK_EX | LOCK_NB), 0); // it has become an ordinary file
    close(other);
    EXPECT_EQ(files(), Names{"slow"});
}

TEST_F(OutputFileTest, OldLinkOfATemporaryNameStays) {
    img::test::writeFile(at("target"), "mine");
    makeOld(at("target"), std::chrono::hours(1000));
    fs::create_symlink("target", at(STALE));
    { const OutputFile file(at("out")); }
    EXPECT_EQ(files(), (Names{STALE, "target"}));
}

TEST_F(OutputFileTest, ReplacedFilePassesItsPermissionsOn) {
    img::test::writeFile(at("out"), "old");
    fs::permissions(at("out"), fs::perms(0646));
    OutputFile file(at("out"));
    file.commit();
    EXPECT_EQ(fs::status(at("out")).permissions(), fs::perms(0646));
}

TEST_F(OutputFileTest, NewFileHasThePermissionsThatTheUserWants) {
    const mode_t before = umask(027);
    {
        OutputFile file(at("out"));
        file.commit();
    }
    umask(before);
    EXPECT_EQ(fs::status(at("out")).permissions(), fs::perms(0640));
}

TEST_F(OutputFileTest, DescriptorsAreClosed) {
    const auto count = [] {
        int descriptors = 0;
        for ([[maybe_unused]] const auto& entry : fs::directory_iterator("/dev/fd")) {
            ++descriptors;
        }
        return descriptors;
    };
    img::test::writeFile(at("a"), "old");
    const int before = count();
    {
        OutputFile a(at("a"));
        OutputFile b(at("b"));
        OutputFile c(at("c"));
        EXPECT_EQ(commitBoth(a, b), "done");
    }
    EXPECT_EQ(count(), before);
}

#endif

} // namespace zqx::pictures
