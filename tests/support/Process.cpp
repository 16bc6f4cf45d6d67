// Processes for the tests. Output goes through unnamed files, so that nothing can block and nothing is left behind.
#include "Process.h"

#include <csignal>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zqx::img::test {

namespace fs = std::filesystem;

namespace {

std::string getContent(std::FILE* file) {
    std::rewind(file);
    std::string content;
    char block[4096];
    for (std::size_t count = 0; (count = std::fread(block, 1, sizeof block, file)) > 0;) {
        content.append(block, count);
    }
    std::fclose(file);
    return content;
}

} // namespace

BackgroundCommand::BackgroundCommand(const std::vector<std::string>& command)
    : mOut(std::tmpfile()), mErr(std::tmpfile()) {
    std::vector<char*> arguments;
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", 0, 0);
    posix_spawn_file_actions_adddup2(&actions, fileno(mOut), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fileno(mErr), STDERR_FILENO);
    const int failure = posix_spawnp(&mProcess, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) {
        throw std::runtime_error("cannot run " + command[0]);
    }
}

void BackgroundCommand::sendSignal(int number) const {
    kill(mProcess, number);
}

Outcome BackgroundCommand::wait() {
    int status = 0;
    waitpid(mProcess, &status, 0);
    const int exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return {exitCode, getContent(mOut), getContent(mErr)};
}

Outcome runCommand(const std::vector<std::string>& command) {
    return BackgroundCommand(command).wait();
}

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const fs::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

} // namespace zqx::img::test
