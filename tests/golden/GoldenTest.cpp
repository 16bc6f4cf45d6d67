// The library's results are those that were recorded: on every instruction set, with one thread and with two.
#include <string>
#include <tuple>

#include <gtest/gtest.h>

#include "golden/Record.h"

namespace {

using golden::Hashes;
using golden::Subject;

bool belongsTo(const Subject& subject, const std::string& name) {
    return name.starts_with(std::string(subject.name) + "/");
}

class GoldenTest : public testing::TestWithParam<std::tuple<Subject, int>> {};

TEST_P(GoldenTest, ResultsAreTheRecordedOnes) {
    const auto& [subject, threads] = GetParam();
    const Hashes actual = golden::recordOn(subject, threads);
    Hashes recorded = golden::expectedHashes();
    EXPECT_FALSE(actual.empty());
    for (const auto& [name, hash] : actual) {
        EXPECT_EQ(recorded[name], hash) << name;
        recorded.erase(name);
    }
    for (const auto& [name, hash] : recorded) {
        EXPECT_FALSE(belongsTo(subject, name)) << name << " has been recorded, but is no longer done";
    }
}

std::string nameOfTest(const testing::TestParamInfo<GoldenTest::ParamType>& info) {
    const auto& [subject, threads] = info.param;
    return std::string(subject.name) + "_threads_" + std::to_string(threads);
}

INSTANTIATE_TEST_SUITE_P(AllSubjects, GoldenTest,
                         testing::Combine(testing::ValuesIn(golden::subjects().begin(), golden::subjects().end()),
                                          testing::Values(1, 2)),
                         nameOfTest);

TEST(GoldenRecordTest, EveryRecordedWorkBelongsToASubject) {
    for (const auto& [name, hash] : golden::expectedHashes()) {
        bool isKnown = false;
        for (const Subject& subject : golden::subjects()) {
            isKnown = isKnown || belongsTo(subject, name);
        }
        EXPECT_TRUE(isKnown) << name;
    }
}

} // namespace
