// What is decided about a run before it begins.
#include <chrono>
#include <filesystem>

#include <zqx/tools/BatchPlan.h>

#include "zqx/pictures/files/Error.h"

#include <support/DirectoryTest.h>
#include <support/Process.h>

namespace zqx::tools {

using namespace pictures;

namespace fs = std::filesystem;

namespace {

using Action = PlannedPicture::Action;

class BatchPlanTest : public img::test::DirectoryTest {
protected:
    BatchPlanTest() {
        options.outputDirectory = at("out");
        options.nameTemplate = "{dir}/{stem}.{ext}";
    }

    /// A file so many nanoseconds old, as seen from one moment.
    void make(const std::string& name, int age = 0) const {
        fs::create_directories(fs::path(at(name)).parent_path());
        img::test::writeFile(at(name), "x");
        fs::last_write_time(at(name), mNow - std::chrono::nanoseconds(age));
    }

    std::string complaint(const std::vector<Input>& inputs) const {
        try {
            planBatch(inputs, options);
        } catch (const UsageError& error) {
            return error.what();
        }
        return "none";
    }

    PlannedPicture planOne(const std::string& name) const { return planBatch({{at(name), ""}}, options).front(); }

    PlanOptions options;

private:
    fs::file_time_type mNow = fs::file_time_type::clock::now();
};

} // namespace

TEST_F(BatchPlanTest, OutputsLieInTheOutputFolderUnderTheirFolders) {
    const std::vector<PlannedPicture> plan = planBatch({{"in/a.png", ""}, {"in/sub/a.jpg", "sub"}}, options);
    ASSERT_EQ(plan.size(), 2U);
    EXPECT_EQ(plan[0].output, at("out/a.png"));
    EXPECT_EQ(plan[1].output, at("out/sub/a.jpg"));
    EXPECT_EQ(plan[1].input, "in/sub/a.jpg");
    EXPECT_EQ(plan[1].action, Action::CREATE);
}

TEST_F(BatchPlanTest, NumbersCountFromOne) {
    options.nameTemplate = "{n:03}.png";
    const std::vector<PlannedPicture> plan = planBatch({{"b.png", ""}, {"a.png", ""}}, options);
    EXPECT_EQ(plan[0].output, at("out/001.png"));
    EXPECT_EQ(plan[1].output, at("out/002.png"));
}

TEST_F(BatchPlanTest, TwoInputsWithOneOutputAreRefusedByName) {
    EXPECT_EQ(complaint({{"x/a.png", ""}, {"b.png", ""}, {"y/a.png", ""}}),
              at("out/a.png") +
                  ": would be written for both x/a.png and y/a.png; give them different names, for example with --name "
                  "\"{dir}/{stem}_{n:04}.{ext}\"");
}

TEST_F(BatchPlanTest, OutputsThatDifferInCaseAloneAreRefused) {
    EXPECT_NE(complaint({{"x/A.png", ""}, {"y/a.png", ""}}).find("which is the same name on many disks"),
              std::string::npos);
}

TEST_F(BatchPlanTest, OneOutputByTwoWaysIsFoundOut) {
    make("out/real/keep");
    fs::create_directory_symlink("real", at("out/link"));
    EXPECT_NE(complaint({{"x/a.png", "real"}, {"y/a.png", "link"}}).find("would be written for both"),
              std::string::npos);
}

TEST_F(BatchPlanTest, OutputThatIsAnInputIsRefused) {
    make("in/a.png");
    make("in/b.png");
    options.outputDirectory = at("in/../in");
    options.nameTemplate = "b.png";
    EXPECT_EQ(complaint({{at("in/a.png"), ""}}), "none"); // b.png is no input here
    options.nameTemplate = "{stem}.{ext}";
    EXPECT_NE(complaint({{at("in/a.png"), ""}}).find("would replace a picture that this run reads"), std::string::npos);
}

TEST_F(BatchPlanTest, SinglePictureMayReplaceItself) {
    make("a.png");
    options = {};
    options.output = at("a.png");
    EXPECT_EQ(planOne("a.png").action, Action::REPLACE);
}

TEST_F(BatchPlanTest, HardLinkToAnInputIsThatInput) {
    make("in/a.png");
    fs::create_directories(at("out"));
    fs::create_hard_link(at("in/a.png"), at("out/a.png"));
    EXPECT_NE(complaint({{at("in/a.png"), ""}}).find("would replace a picture that this run reads"), std::string::npos);
}

TEST_F(BatchPlanTest, ComparisonOntoTheInputIsRefused) {
    make("a.png");
    fs::create_symlink("a.png", at("link.png"));
    options = {};
    options.output = at("b.png");
    for (const char* name : {"a.png", "link.png"}) {
        options.comparison = at(name);
        EXPECT_EQ(complaint({{at("a.png"), ""}}),
                  at(name) + ": would replace the input " + at("a.png") + "; choose another name");
    }
    options.output = at("a.png"); // a picture that is replaced by its own output stays safe from the comparison
    EXPECT_NE(complaint({{at("a.png"), ""}}), "none");
    options.comparison = at("both.png");
    EXPECT_EQ(complaint({{at("a.png"), ""}}), "none");
}

TEST_F(BatchPlanTest, ParameterDocumentIsNoOutput) {
    make("a.png");
    make("look.png");
    options = {};
    options.documents = {at("look.png")};
    options.output = at("look.png");
    EXPECT_NE(complaint({{at("a.png"), ""}}).find("would replace the input"), std::string::npos);
}

TEST_F(BatchPlanTest, ExtensionThatCannotBeWrittenIsToldWithTheWayOut) {
    const std::string text = complaint({{"a.png", ""}, {"b.cr2", ""}});
    EXPECT_NE(text.find("b.cr2: would become " + at("out/b.cr2")), std::string::npos) << text;
    EXPECT_NE(text.find("--name \"{dir}/{stem}.png\""), std::string::npos) << text;
}

TEST_F(BatchPlanTest, ExistingOutputsAreKeptWhenAsked) {
    make("in/a.png");
    make("out/a.png");
    EXPECT_EQ(planOne("in/a.png").action, Action::REPLACE);
    options.keepExisting = true;
    EXPECT_EQ(planOne("in/a.png").action, Action::SKIP);
    EXPECT_EQ(planOne("in/a.png").reason, "exists");
    EXPECT_EQ(planOne("in/b.png").action, Action::CREATE);
}

TEST_F(BatchPlanTest, UpdateGoesByTheNanosecond) {
    options.onlyOutdated = true;
    make("in/a.png", 1000);
    make("out/a.png", 1000);
    EXPECT_EQ(planOne("in/a.png").reason, "up to date");
    make("in/a.png", 999);
    EXPECT_EQ(planOne("in/a.png").action, Action::REPLACE);
}

TEST_F(BatchPlanTest, UpdateHeedsEveryParameterDocument) {
    options.onlyOutdated = true;
    make("in/a.png", 1000);
    make("out/a.png", 500);
    make("old.json", 700);
    make("new.json", 300);
    options.documents = {at("old.json")};
    EXPECT_EQ(planOne("in/a.png").action, Action::SKIP);
    options.documents = {at("new.json"), at("old.json")};
    EXPECT_EQ(planOne("in/a.png").action, Action::REPLACE);
}

TEST_F(BatchPlanTest, UpdateWritesWhatIsMissing) {
    options.onlyOutdated = true;
    make("in/a.png");
    EXPECT_EQ(planOne("in/a.png").action, Action::CREATE);
}

TEST_F(BatchPlanTest, UpdateHeedsTheSecondOutput) {
    options = {};
    options.output = at("out.png");
    options.comparison = at("both.png");
    options.onlyOutdated = true;
    make("a.png", 1000);
    make("out.png", 500);
    EXPECT_EQ(planOne("a.png").action, Action::REPLACE);
    make("both.png", 500);
    EXPECT_EQ(planOne("a.png").action, Action::SKIP);
}

TEST_F(BatchPlanTest, FoldersAreMadeForWhatIsWritten) {
    const std::vector<PlannedPicture> plan{{"a.png", at("out/x/y/a.png"), Action::CREATE, ""},
                                           {"b.png", at("out/z/b.png"), Action::SKIP, "exists"}};
    makeFolders(plan, at("out"));
    EXPECT_TRUE(fs::is_directory(at("out/x/y")));
    EXPECT_FALSE(fs::exists(at("out/z")));
}

TEST_F(BatchPlanTest, FileInTheWayOfAFolderIsTold) {
    make("out");
    EXPECT_THROW(makeFolders({{"a.png", at("out/a.png"), Action::CREATE, ""}}, at("out")), Error);
}

} // namespace zqx::tools
