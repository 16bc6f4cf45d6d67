// What a decoder that was taken over can do: nothing.
#include <cerrno>
#include <cstring>

#include <sched.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <support/Process.h>

#include "isolation/AttackerRun.h"
#include "isolation/Attempts.h"

namespace zqx::pictures::test {

namespace {

class ConfinementTest : public AttackerTest {
protected:
    /// Expects that each attempt was made, and refused.
    static void expectRefusals(Result result) {
        ASSERT_EQ(result.answers["confined"], 0) << "this system cannot confine processes";
        EXPECT_EQ(result.end.signal, 0) << "a refused call is no reason to die";
        for (const Attempt& attempt : attemptsOn({})) {
            ASSERT_TRUE(result.answers.contains(attempt.name)) << attempt.name << " was not tried";
            const int answer = result.answers[attempt.name];
            EXPECT_TRUE(answer == EPERM || answer == ENOSYS) << attempt.name << ": " << std::strerror(answer);
        }
    }

    /// Expects that files and processes are as they were.
    void expectNoTraces() {
        EXPECT_EQ(img::test::readFile(at("victim")), "untouched");
        EXPECT_EQ(files(), (std::vector<std::string>{"picture", "victim"}));
        errno = 0;
        EXPECT_EQ(getpriority(PRIO_PROCESS, static_cast<id_t>(bystander())), getpriority(PRIO_PROCESS, 0));
        EXPECT_EQ(sched_getscheduler(bystander()), sched_getscheduler(0));
    }
};

} // namespace

TEST_F(ConfinementTest, NothingThatADecoderDoesNotNeedIsPossible) {
    expectRefusals(run("confined"));
    expectNoTraces();
}

TEST_F(ConfinementTest, FilterOfSystemCallsIsEnough) {
    expectRefusals(run("filtered"));
    expectNoTraces();
}

/// What a hole in the filter would lead to.
TEST_F(ConfinementTest, FilesAreOutOfReachWithoutTheFilter) {
    Result result = run("barred");
    if (result.answers["confined"] != 0) {
        GTEST_SKIP() << "this kernel has no Landlock";
    }
    int count = 0;
    for (const Attempt& attempt : attemptsOn({})) {
        const std::string name = attempt.name;
        if (attempt.byName && attempt.unconfined != Attempt::DEPENDS && name != "truncate") { // known from version 3 on
            EXPECT_TRUE(result.answers.contains(name)) << name;
            EXPECT_NE(result.answers[name], 0) << name;
            ++count;
        }
    }
    EXPECT_GE(count, 15);
    EXPECT_EQ(files(), (std::vector<std::string>{"picture", "victim"}));
}

/// Otherwise the refusals above would say nothing.
TEST_F(ConfinementTest, AttemptsWouldSucceedElsewhere) {
    Result result = run("free");
    int count = 0;
    for (const Attempt& attempt : attemptsOn({})) {
        if (attempt.unconfined != Attempt::DEPENDS) {
            ASSERT_TRUE(result.answers.contains(attempt.name)) << attempt.name;
            EXPECT_EQ(result.answers[attempt.name], attempt.unconfined)
                << attempt.name << ": " << std::strerror(result.answers[attempt.name]);
            ++count;
        }
    }
    EXPECT_GE(count, 80);
    EXPECT_EQ(img::test::readFile(at("victim")), "");
}

TEST_F(ConfinementTest, WhatDecodingNeedsIsPossible) {
    Result result = run("needy");
    EXPECT_EQ(result.answers["confined"], 0);
    for (const Attempt& need : needs()) {
        ASSERT_TRUE(result.answers.contains(need.name)) << need.name;
        EXPECT_EQ(result.answers[need.name], 0) << need.name;
    }
}

TEST_F(ConfinementTest, AbortingIsSeenAsThat) {
    EXPECT_EQ(run("aborting").end.signal, SIGABRT);
}

} // namespace zqx::pictures::test
