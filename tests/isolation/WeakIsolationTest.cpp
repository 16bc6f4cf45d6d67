// A system that cannot confine processes: that is told, or refused.
#include <algorithm>

#include <cli/Pictures.h>
#include <support/DirectoryTest.h>
#include <support/Process.h>

namespace zqx::img::test {

namespace {

class WeakIsolationTest : public DirectoryTest {
protected:
    WeakIsolationTest() {
        for (const char* name : {"a.png", "b.png"}) {
            writePicture(at(name), paint(5, 5, 24, motley));
        }
    }

    /// Runs the program where it cannot have a filter of system calls.
    Outcome zqxImg(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {ZQX_ATTACKER, "--without-filters", ZQX_PROGRAM});
        return runCommand(arguments);
    }

    static std::size_t countWarnings(const std::string& words) {
        std::size_t count = 0;
        for (std::size_t place = 0; (place = words.find("cannot confine", place)) != std::string::npos; ++place) {
            ++count;
        }
        return count;
    }
};

} // namespace

TEST_F(WeakIsolationTest, IsolationIsRefused) {
    for (const char* command : {"apply", "info", "histogram"}) {
        std::vector<std::string> arguments{command, at("a.png"), "--isolate"};
        if (arguments[0] == "apply") {
            arguments.insert(arguments.end(), {"-o", at("out.png")});
        }
        const Outcome outcome = zqxImg(arguments);
        EXPECT_EQ(outcome.exitCode, 1) << command;
        EXPECT_EQ(outcome.err, "zqx-img: " + at("a.png") +
                                   ": cannot be decoded in isolation, as this system does not confine processes (it "
                                   "takes Linux with seccomp filters); --weak-isolation works without\n");
    }
    EXPECT_FALSE(std::filesystem::exists(at("out.png")));
}

TEST_F(WeakIsolationTest, WeakIsolationWarns) {
    const Outcome outcome = zqxImg({"apply", at("a.png"), "-o", at("out.png"), "--weak-isolation"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(countWarnings(outcome.err), 1U) << outcome.err;
    EXPECT_TRUE(std::filesystem::exists(at("out.png")));
}

TEST_F(WeakIsolationTest, ManyPicturesWarnOnce) {
    const Outcome outcome = zqxImg({"apply", at("a.png"), at("b.png"), "--output-dir", at("out")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(countWarnings(outcome.err), 1U) << outcome.err;
    EXPECT_TRUE(std::filesystem::exists(at("out/a.png")));
    EXPECT_TRUE(std::filesystem::exists(at("out/b.png")));
}

TEST_F(WeakIsolationTest, StrongIsolationDoesNotWarn) {
    const Outcome outcome = runCommand({ZQX_PROGRAM, "apply", at("a.png"), "-o", at("out.png"), "--weak-isolation"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
}

} // namespace zqx::img::test
