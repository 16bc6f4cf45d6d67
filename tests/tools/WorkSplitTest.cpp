// Processors shared between pictures and within them.
#include <gtest/gtest.h>

#include <zqx/tools/Batch.h>

namespace zqx::tools {

namespace {

void expectSplit(const WorkSplit& split, unsigned jobs, unsigned threads) {
    EXPECT_EQ(split.jobs, jobs);
    EXPECT_EQ(split.threads, threads);
}

} // namespace

TEST(SplitWorkTest, ManyPicturesGetAProcessorEach) {
    expectSplit(splitWork(200, 8, {}, {}), 8, 1);
}

TEST(SplitWorkTest, FewPicturesShareTheProcessors) {
    expectSplit(splitWork(1, 8, {}, {}), 1, 8);
    expectSplit(splitWork(3, 8, {}, {}), 3, 2);
}

TEST(SplitWorkTest, JobsDecideOverThreads) {
    expectSplit(splitWork(200, 8, 2U, {}), 2, 4);
    expectSplit(splitWork(200, 8, 16U, {}), 16, 1);
    expectSplit(splitWork(1, 8, 4U, {}), 1, 8); // more jobs than pictures are none
}

TEST(SplitWorkTest, ThreadsDecideOverJobs) {
    expectSplit(splitWork(200, 8, {}, 4U), 2, 4);
    expectSplit(splitWork(200, 8, {}, 3U), 2, 3);
    expectSplit(splitWork(200, 8, {}, 32U), 1, 32);
}

TEST(SplitWorkTest, NoThreadsMeansAllProcessors) {
    expectSplit(splitWork(200, 8, {}, 0U), 1, 8);
    expectSplit(splitWork(200, 8, 3U, 0U), 3, 8);
}

TEST(SplitWorkTest, BothAreTakenAsTheyAre) {
    expectSplit(splitWork(200, 8, 5U, 7U), 5, 7);
}

TEST(SplitWorkTest, NothingToDoIsNoTrouble) {
    expectSplit(splitWork(0, 8, {}, {}), 1, 8);
}

} // namespace zqx::tools
