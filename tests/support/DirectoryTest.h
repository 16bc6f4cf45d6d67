// Tests that need files have a directory of their own, which is gone after the test.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace zqx::img::test {

/// A test with a fresh directory.
class DirectoryTest : public ::testing::Test {
protected:
    DirectoryTest();
    ~DirectoryTest() override;

    /// The name of a file in the test's directory.
    std::string at(const std::string& name) const { return (mDirectory / name).string(); }

    /// Names in the test's directory, sorted, hidden ones too.
    std::vector<std::string> files() const;

private:
    std::filesystem::path mDirectory;
};

} // namespace zqx::img::test
