// Runs programs as a user would, in a directory of their own that is gone after the test.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace zqx::img::test {

struct Outcome {
    int exitCode; ///< 128 + number for a death by signal
    std::string out;
    std::string err;
};

/// Runs a program found by its path, or else through PATH, and waits for it.
Outcome runCommand(const std::vector<std::string>& command);

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& content);

/// A test with a fresh directory.
class ProgramTest : public ::testing::Test {
protected:
    ProgramTest();
    ~ProgramTest() override;

    /// The name of a file in the test's directory.
    std::string at(const std::string& name) const { return (mDirectory / name).string(); }

    /// Names in the test's directory, sorted, hidden ones too.
    std::vector<std::string> files() const;

    static Outcome zqxImg(std::vector<std::string> arguments);

    /// Runs the program and expects it to succeed without a word.
    static void succeed(const std::vector<std::string>& arguments);

    /// Runs the program and expects an exit code, and a text in what it says on standard error.
    static void fail(int exitCode, const std::vector<std::string>& arguments, const std::string& words);

private:
    std::filesystem::path mDirectory;
};

} // namespace zqx::img::test
