// Files that are to be kept, also when they appear while their rival is being written.
#include <filesystem>

#include "zqx/pictures/files/OutputFile.h"

#include <support/DirectoryTest.h>
#include <support/Process.h>

namespace zqx::pictures {

namespace {

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

} // namespace zqx::pictures
