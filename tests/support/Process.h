// Runs programs as a user would, and hands files over to them.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

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

} // namespace zqx::img::test
