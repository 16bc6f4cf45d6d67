// Processes for the tests. Output goes through unnamed files, so that nothing can block and nothing is left behind.
#include "Process.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace zqx::img::test {

namespace fs = std::filesystem;

namespace {

std::string contentOf(std::FILE* file) {
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

Outcome runCommand(const std::vector<std::string>& command) {
    std::vector<char*> arguments;
    for (const std::string& argument : command) {
        arguments.push_back(const_cast<char*>(argument.c_str()));
    }
    arguments.push_back(nullptr);
    std::FILE* out = std::tmpfile();
    std::FILE* err = std::tmpfile();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", 0, 0);
    posix_spawn_file_actions_adddup2(&actions, fileno(out), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fileno(err), STDERR_FILENO);
    pid_t process = 0;
    const int failure = posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) {
        throw std::runtime_error("cannot run " + command[0]);
    }
    int status = 0;
    waitpid(process, &status, 0);
    const int exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    return {exitCode, contentOf(out), contentOf(err)};
}

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const fs::path& path, const std::string& content) {
    std::ofstream(path, std::ios::binary) << content;
}

} // namespace zqx::img::test
