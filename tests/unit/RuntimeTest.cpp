// What the library says of itself, and how it is told how many threads to take.
#include <zqx/img/Runtime.h>

#include <limits>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <hwy/highway.h>
#include <hwy/targets.h>
#if defined(_OPENMP)
#include <omp.h>
#endif

#include <zqx/img/Version.h>

namespace {

using zqx::img::availableProcessors;
using zqx::img::setThreadCount;
using zqx::img::threadCount;

/// Puts the number of threads back.
class RuntimeThreadsTest : public testing::Test {
protected:
    void SetUp() override {
#if defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "rows have as many threads as ever under the thread sanitizer";
#endif
    }
    ~RuntimeThreadsTest() override {
        setThreadCount(mBefore);
    }

private:
    unsigned mBefore = threadCount();
};

} // namespace

TEST(RuntimeTest, HeadersLibraryAndProjectAreOfOneVersion) {
    EXPECT_STREQ(ZQX_IMG_VERSION, ZQX_PROJECT_VERSION);
    EXPECT_STREQ(zqx::img::runtimeVersion(), ZQX_PROJECT_VERSION);
    EXPECT_STREQ(zqx::img::VERSION, ZQX_PROJECT_VERSION);
    EXPECT_EQ(std::to_string(zqx::img::VERSION_MAJOR) + "." + std::to_string(zqx::img::VERSION_MINOR) + "." +
                  std::to_string(zqx::img::VERSION_PATCH),
              ZQX_PROJECT_VERSION);
}

TEST(RuntimeTest, InstructionSetIsTheBestOneThatThereIs) {
    const auto usable = HWY_TARGETS & hwy::SupportedTargets();
    EXPECT_STREQ(zqx::img::instructionSet(), hwy::TargetName(usable & -usable));
}

TEST(RuntimeTest, InstructionSetFollowsWhatMayBeUsed) {
    const auto before = hwy::SupportedTargets(); // the tests may have been told to use one set alone
    hwy::SetSupportedTargetsForTest(HWY_STATIC_TARGET);
    EXPECT_STREQ(zqx::img::instructionSet(), hwy::TargetName(HWY_STATIC_TARGET));
    hwy::SetSupportedTargetsForTest(before);
}

TEST(RuntimeTest, ThereIsAProcessor) {
    EXPECT_GE(availableProcessors(), 1U);
    EXPECT_GE(threadCount(), 1U);
}

TEST_F(RuntimeThreadsTest, ChosenNumberIsTheNumber) {
    for (const unsigned count : {1U, 3U, 17U}) {
        setThreadCount(count);
        EXPECT_EQ(threadCount(), count);
    }
}

TEST_F(RuntimeThreadsTest, NothingIsAllProcessors) {
    setThreadCount(1);
    setThreadCount(0);
    EXPECT_EQ(threadCount(), availableProcessors());
}

TEST_F(RuntimeThreadsTest, ProcessorsStayWhatTheyAre) {
    const unsigned before = availableProcessors();
    setThreadCount(before + 5);
    EXPECT_EQ(availableProcessors(), before);
}

TEST_F(RuntimeThreadsTest, NumbersBeyondAnIntAreAsManyAsAnIntHolds) {
    setThreadCount(std::numeric_limits<unsigned>::max());
    EXPECT_EQ(threadCount(), static_cast<unsigned>(std::numeric_limits<int>::max()));
}

TEST_F(RuntimeThreadsTest, OtherThreadsKeepTheirs) {
    setThreadCount(availableProcessors() + 3);
    unsigned elsewhere = 0;
    std::thread([&] { elsewhere = threadCount(); }).join();
    EXPECT_EQ(elsewhere, availableProcessors());
}

#if defined(_OPENMP)

TEST_F(RuntimeThreadsTest, ItIsTheThreadsOpenMPSetting) {
    setThreadCount(5);
    EXPECT_EQ(omp_get_max_threads(), 5);
    omp_set_num_threads(2);
    EXPECT_EQ(threadCount(), 2U);
}

#endif
