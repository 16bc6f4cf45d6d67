// The program by its path, with what a sanitizer has to know of it.
#include "Program.h"

#include <algorithm>

namespace zqx::img::test {

Outcome ProgramTest::zqxImg(std::vector<std::string> arguments) {
    const bool writesPsd =
        std::ranges::any_of(arguments, [](const std::string& name) { return name.ends_with(".psd"); });
    arguments.insert(arguments.begin(), ZQX_PROGRAM);
    if (writesPsd) { // only where it is known to: the suppression would hide leaks of our own bitmaps, too
        arguments.insert(arguments.begin(),
                         {"env", "LSAN_OPTIONS=print_suppressions=0:suppressions=" ZQX_PSD_LEAK_SUPPRESSION});
    }
    return runCommand(arguments);
}

void ProgramTest::succeed(const std::vector<std::string>& arguments) {
    const Outcome outcome = zqxImg(arguments);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
}

void ProgramTest::fail(int exitCode, const std::vector<std::string>& arguments, const std::string& words) {
    const Outcome outcome = zqxImg(arguments);
    EXPECT_EQ(outcome.exitCode, exitCode) << outcome.err;
    EXPECT_EQ(outcome.err.substr(0, 9), "zqx-img: ") << outcome.err;
    EXPECT_NE(outcome.err.find(words), std::string::npos) << outcome.err;
}

} // namespace zqx::img::test
