// Processes that do not want to end are ended, and nobody waits longer for them than they may take.
#include <cerrno>

#include <signal.h>
#include <sys/wait.h>

#include "isolation/AttackerRun.h"

namespace zqx::pictures::test {

namespace {

using RogueDecoderTest = AttackerTest;

constexpr std::uint64_t SOON = 300; // milliseconds

} // namespace

TEST_F(RogueDecoderTest, ThatLeavesItsGroupAndItsAlarm) {
    const Result result = run("leaving", SOON);
    EXPECT_TRUE(result.end.tookTooLong);
    EXPECT_EQ(result.end.signal, SIGKILL);
}

TEST_F(RogueDecoderTest, ThatSeemsToHaveEnded) {
    const Result result = run("hiding");
    EXPECT_FALSE(result.end.tookTooLong);
    EXPECT_EQ(result.end.signal, SIGKILL);
}

TEST_F(RogueDecoderTest, ThatIsStopped) {
    const Result result = run("stopped", SOON);
    EXPECT_TRUE(result.end.tookTooLong);
    EXPECT_EQ(result.end.signal, SIGKILL);
}

/// Only where nothing confines it can it start one.
TEST_F(RogueDecoderTest, ThatIsOutlivedByItsChild) {
    const Result result = run("outliving", 2000);
    EXPECT_TRUE(result.end.tookTooLong);
    EXPECT_EQ(result.end.exitCode, 0);
    EXPECT_EQ(kill(std::stoi(result.words), SIGKILL), 0);
}

TEST_F(RogueDecoderTest, NoneIsLeftBehind) {
    for (const char* mode : {"leaving", "hiding", "stopped"}) {
        run(mode, SOON);
    }
    // All children but the bystander are gone, and waited for.
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), 0);
    kill(bystander(), SIGKILL);
    EXPECT_EQ(waitpid(-1, nullptr, 0), bystander());
    EXPECT_EQ(waitpid(-1, nullptr, 0), -1);
    EXPECT_EQ(errno, ECHILD);
}

} // namespace zqx::pictures::test
