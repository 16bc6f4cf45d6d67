// Processes that do not want to end are ended, and nobody waits longer for them than they may take.
#include <cerrno>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <future>
#include <system_error>
#include <thread>

#include <signal.h>
#include <sys/resource.h>
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

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // whose runtimes need descriptors themselves
/// A system that cannot wait says so again and again.
TEST_F(RogueDecoderTest, WaitingThatFailsIsAnErrorAndEndsIt) {
    std::signal(SIGUSR1, [](int) {});
    std::promise<bool> failed;
    std::thread waiting([&] {
        try {
            run("noticed");
            failed.set_value(false);
        } catch (const std::system_error&) {
            failed.set_value(true);
        }
    });
    while (!std::filesystem::exists(at("started"))) {
        std::this_thread::yield();
    }
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit none{0, before.rlim_max};
    setrlimit(RLIMIT_NOFILE, &none); // from now on even one descriptor is too many to wait for
    std::future<bool> outcome = failed.get_future();
    while (outcome.wait_for(std::chrono::milliseconds(10)) != std::future_status::ready) {
        pthread_kill(waiting.native_handle(), SIGUSR1); // so that it waits anew
    }
    waiting.join();
    setrlimit(RLIMIT_NOFILE, &before);
    EXPECT_TRUE(outcome.get());
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), 0) << "a process is left beside the bystander";
}
#endif

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
