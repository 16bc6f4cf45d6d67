// Patterns for the names of output files.
#include <gtest/gtest.h>

#include <zqx/tools/NameTemplate.h>

#include "zqx/pictures/files/Error.h"

namespace zqx::tools {

using namespace pictures;

namespace {

std::string expand(const char* pattern, const Input& input = {"photos/2024/lake.view.JPG", "2024"},
                   std::size_t number = 7) {
    return NameTemplate(pattern).expand(input, number);
}

std::string complaintAbout(const char* pattern, const Input& input = {"lake.jpg", ""}) {
    try {
        expand(pattern, input);
    } catch (const UsageError& error) {
        return error.what();
    }
    return "none";
}

} // namespace

TEST(NameTemplateTest, StemEndsAtTheLastDot) {
    EXPECT_EQ(expand("{stem}"), "lake.view");
}

TEST(NameTemplateTest, ExtensionKeepsItsCase) {
    EXPECT_EQ(expand("{stem}.{ext}"), "lake.view.JPG");
}

TEST(NameTemplateTest, NumberIsFilledUpWithZeros) {
    EXPECT_EQ(expand("a{n}"), "a7");
    EXPECT_EQ(expand("a{n:04}"), "a0007");
    EXPECT_EQ(expand("a{n:02}", {"x.png", ""}, 12345), "a12345");
}

TEST(NameTemplateTest, FolderIsTheOneBelowTheNamedFolder) {
    EXPECT_EQ(expand("{dir}/{stem}.png"), "2024/lake.view.png");
    EXPECT_EQ(expand("by year/{dir}/x.png", {"p/a/b/c.png", "a/b"}), "by year/a/b/x.png");
}

TEST(NameTemplateTest, EmptyFolderLeavesNoSlash) {
    EXPECT_EQ(expand("{dir}/{stem}.{ext}", {"lake.jpg", ""}), "lake.jpg");
    EXPECT_EQ(expand("a//b/./{stem}", {"lake.jpg", ""}), "a/b/lake");
}

TEST(NameTemplateTest, DoubledBracesAreBraces) {
    EXPECT_EQ(expand("{{{stem}}}"), "{lake.view}");
    EXPECT_EQ(expand("{{stem}}"), "{stem}");
}

TEST(NameTemplateTest, BracesOfTheInputAreText) {
    EXPECT_EQ(expand("{stem}.png", {"{n}.jpg", ""}), "{n}.png");
}

TEST(NameTemplateTest, NamesMayBeInAnyScript) {
    EXPECT_EQ(expand("копия {stem}.png", {"写真/日本.jpg", "写真"}), "копия 日本.png");
}

TEST(NameTemplateTest, UnknownFieldIsNamedWithThoseThatThereAre) {
    EXPECT_EQ(complaintAbout("{name}.png"),
              "--name: unknown field {name}; the fields are {stem}, {ext}, {n}, {n:04} and {dir}");
    for (const char* pattern : {"{}", "{n:4}", "{n:0}x{n:0x}", "{n:}", "{n:0999}", "{Stem}", "{n:0-1}"}) {
        EXPECT_NE(complaintAbout(pattern).find("unknown field {"), std::string::npos) << pattern;
    }
}

TEST(NameTemplateTest, SingleBracesAreRefused) {
    EXPECT_NE(complaintAbout("{stem.png").find("is not closed"), std::string::npos);
    EXPECT_NE(complaintAbout("stem}.png").find("a } without a {"), std::string::npos);
}

TEST(NameTemplateTest, NoWayLeadsOutOfTheOutputFolder) {
    EXPECT_NE(complaintAbout("../{stem}.png").find("leads out of the output folder"), std::string::npos);
    EXPECT_NE(complaintAbout("a/../../b.png").find("leads out of the output folder"), std::string::npos);
    EXPECT_EQ(expand("/tmp/{stem}.png"), "tmp/lake.view.png");
}

TEST(NameTemplateTest, NamesOfFoldersAreNoFileNames) {
    for (const char* pattern : {"", "{dir}", "sub/", "/", "."}) {
        EXPECT_NE(complaintAbout(pattern).find("gives no file name for lake.jpg"), std::string::npos) << pattern;
    }
}

TEST(NameTemplateTest, KnowsWhetherTheExtensionIsTheInputs) {
    EXPECT_TRUE(NameTemplate("{stem}.{ext}").usesExtension());
    EXPECT_FALSE(NameTemplate("{stem}.png").usesExtension());
}

} // namespace zqx::tools
