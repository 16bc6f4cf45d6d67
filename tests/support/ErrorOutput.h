// What a process writes to its error output, by whatever means.
#pragma once

#include <cstdio>
#include <string>

#include <unistd.h>

namespace zqx::img::test {

/// Takes the error output of the process for as long as it lives.
class ErrorOutput {
public:
    ErrorOutput() : mFile(std::tmpfile()), mBefore(dup(STDERR_FILENO)) {
        std::fflush(stderr);
        dup2(fileno(mFile), STDERR_FILENO);
    }
    ~ErrorOutput() {
        std::fflush(stderr);
        dup2(mBefore, STDERR_FILENO);
        close(mBefore);
        std::fclose(mFile);
    }
    ErrorOutput(const ErrorOutput&) = delete;
    ErrorOutput& operator=(const ErrorOutput&) = delete;

    /// All that was written so far.
    std::string text() const {
        std::fflush(stderr);
        std::string written(static_cast<std::size_t>(lseek(STDERR_FILENO, 0, SEEK_END)), '\0');
        const ssize_t count = pread(fileno(mFile), written.data(), written.size(), 0);
        written.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
        return written;
    }

private:
    std::FILE* mFile;
    int mBefore;
};

} // namespace zqx::img::test
