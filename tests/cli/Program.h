// The command line program as the tests use it.
#pragma once

#include <string>
#include <vector>

#include <support/DirectoryTest.h>
#include <support/Process.h>

namespace zqx::img::test {

/// A test that runs the program, with a fresh directory for its files.
class ProgramTest : public DirectoryTest {
protected:
    static Outcome zqxImg(std::vector<std::string> arguments);

    /// Runs the program and expects it to succeed without a word.
    static void succeed(const std::vector<std::string>& arguments);

    /// Runs the program and expects an exit code, and a text in what it says on standard error.
    static void fail(int exitCode, const std::vector<std::string>& arguments, const std::string& words);
};

} // namespace zqx::img::test
