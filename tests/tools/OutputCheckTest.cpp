// Which outputs are refused because they would destroy what they are made from, or each other.
#include <filesystem>
#include <string>

#include <zqx/tools/OutputCheck.h>

#include "zqx/pictures/files/Error.h"

#include <support/DirectoryTest.h>
#include <support/Process.h>

namespace zqx::tools {

namespace fs = std::filesystem;

namespace {

class OutputCheckTest : public img::test::DirectoryTest {
protected:
    void SetUp() override { img::test::writeFile(at("in.png"), "x"); }

    static std::string complaint(const std::vector<std::string>& inputs, const std::vector<Output>& outputs) {
        try {
            checkOutputs(inputs, outputs);
        } catch (const pictures::UsageError& error) {
            return error.what();
        }
        return "none";
    }

    std::string getComplaint(const std::string& output) const {
        return complaint({at("other.png"), at("in.png")}, {{"--difference", at(output)}});
    }
};

} // namespace

TEST_F(OutputCheckTest, OutputThatIsTheInputIsRefused) {
    EXPECT_EQ(getComplaint("in.png"),
              at("in.png") + ": would replace the input " + at("in.png") + "; choose another name");
    EXPECT_EQ(getComplaint("out.png"), "none");
}

TEST_F(OutputCheckTest, DetoursLeadToTheSameFile) {
    fs::create_directory(at("sub"));
    EXPECT_EQ(getComplaint("sub/../in.png"),
              at("sub/../in.png") + ": would replace the input " + at("in.png") + "; choose another name");
}

TEST_F(OutputCheckTest, LinksLeadToTheSameFile) {
    fs::create_symlink("in.png", at("link.png"));
    fs::create_directory_symlink(".", at("here"));
    EXPECT_NE(getComplaint("link.png"), "none");
    EXPECT_NE(getComplaint("here/in.png"), "none");
    EXPECT_NE(complaint({at("link.png")}, {{"--output", at("in.png")}}), "none");
}

TEST_F(OutputCheckTest, HardLinksAreTheSameFile) {
    fs::create_hard_link(at("in.png"), at("hard.png"));
    EXPECT_NE(getComplaint("hard.png"), "none");
}

TEST_F(OutputCheckTest, CopiesAreOtherFiles) {
    fs::copy_file(at("in.png"), at("copy.png"));
    EXPECT_EQ(getComplaint("copy.png"), "none");
}

TEST_F(OutputCheckTest, ReplaceableInputMayBeReplacedAndNoOther) {
    img::test::writeFile(at("look.json"), "x");
    const auto replacing = [this](const std::string& output) {
        return complaint({at("in.png"), at("look.json")}, {{"--output", at(output), at("in.png")}});
    };
    EXPECT_EQ(replacing("in.png"), "none");
    EXPECT_NE(replacing("look.json"), "none");
}

TEST_F(OutputCheckTest, TwoOutputsAreTwoFiles) {
    const auto both = [this](const std::string& first, const std::string& second) {
        return complaint({at("in.png")}, {{"--output", at(first)}, {"--before-after", at(second)}});
    };
    EXPECT_EQ(both("a.png", "b.png"), "none");
    EXPECT_EQ(both("a.png", "a.png"), "--before-after: is the same file as another output; choose another name");
    EXPECT_NE(both("a.png", "./a.png"), "none");
    EXPECT_NE(both("a.png", "A.png"), "none");
}

TEST_F(OutputCheckTest, EmptyNamesAreNoFiles) {
    EXPECT_EQ(complaint({"", at("in.png")}, {{"--output", ""}, {"--before-after", ""}}), "none");
}

} // namespace zqx::tools
