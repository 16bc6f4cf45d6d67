// The program by its path, with what a sanitizer has to know of it.
#include "Program.h"

#include <algorithm>

namespace zqx::img::test {

namespace {

/// The file with the leaks of others that a command is known to show, and null for most: a suppression may hide leaks
/// of our own, too.
const char* leakSuppression(const std::vector<std::string>& arguments) {
    if (std::ranges::any_of(arguments, [](const std::string& name) { return name.ends_with(".psd"); })) {
        return ZQX_PSD_LEAK_SUPPRESSION;
    }
    const bool draws = !arguments.empty() && (arguments.front() == "preview" || arguments.front() == "histogram");
    return draws ? ZQX_FONTCONFIG_LEAK_SUPPRESSION : nullptr;
}

} // namespace

Outcome ProgramTest::zqxImg(std::vector<std::string> arguments) {
    const char* suppression = leakSuppression(arguments);
    arguments.insert(arguments.begin(), ZQX_PROGRAM);
    if (suppression != nullptr) {
        arguments.insert(arguments.begin(),
                         {"env", "LSAN_OPTIONS=print_suppressions=0:suppressions=" + std::string(suppression)});
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
