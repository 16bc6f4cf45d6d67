// Processes for the tests. Output goes through unnamed files, so that nothing can block and nothing is left behind.
#include "Program.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include <spawn.h>
#include <stdlib.h>
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

ProgramTest::ProgramTest() {
    std::string name = (fs::temp_directory_path() / "zqx-img-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("cannot make a temporary directory");
    }
    mDirectory = name;
}

ProgramTest::~ProgramTest() {
    std::error_code ignored;
    fs::remove_all(mDirectory, ignored);
}

std::vector<std::string> ProgramTest::files() const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(mDirectory)) {
        names.push_back(entry.path().filename().string());
    }
    std::ranges::sort(names);
    return names;
}

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
