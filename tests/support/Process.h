// Runs programs as a user would, and hands files over to them.
#pragma once

#include <cstdio>
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

/// A program that goes on while the test does. To be waited for once.
class BackgroundCommand {
public:
    explicit BackgroundCommand(const std::vector<std::string>& command);

    void sendSignal(int number) const;
    Outcome wait();

private:
    int mProcess = 0;
    std::FILE* mOut;
    std::FILE* mErr;
};

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& content);

} // namespace zqx::img::test
