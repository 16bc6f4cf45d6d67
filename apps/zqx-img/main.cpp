// The command line program: runs the command that was asked for, and turns whatever goes wrong into one line and an
// exit code.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>
#include <qutil/Log.h>

#include "commands/CommandLine.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/Interrupts.h"

namespace {

using namespace zqx::app;
using namespace zqx::pictures;

constexpr int DONE = 0;
constexpr int FAILED = 1;
constexpr int WRONG_USAGE = 2;

/// Each line of the text as one of the program's, without asking for memory, which may be what is lacking.
int complain(std::string_view text, int code) {
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        std::fprintf(stderr, "zqx-img: %.*s\n", static_cast<int>(line.size()), line.data());
        text.remove_prefix(std::min(text.size(), line.size() + 1));
    }
    return code;
}

/// "--compare A B" is another way to write "compare A B".
std::vector<const char*> commandLine(int argc, char** argv) {
    std::vector<const char*> words(argv, argv + argc);
    if (words.size() > 1 && std::strcmp(words[1], "--compare") == 0) {
        words[1] = "compare";
    }
    return words;
}

int run(CLI::App& program, int argc, char** argv) {
    try {
        program.parse(argc, commandLine(argc, argv).data());
        return std::fflush(stdout) == 0 ? DONE : complain("standard output: could not be written", FAILED);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) { // help and version arrive as exceptions too
            return program.exit(error);
        }
        complain(error.what(), WRONG_USAGE);
        return complain("see \"zqx-img --help\"", WRONG_USAGE);
    } catch (const ExitCode& code) {
        return code.value;
    } catch (const UsageError& error) {
        return complain(error.what(), WRONG_USAGE);
    } catch (const Error& error) {
        return complain(error.what(), FAILED);
    } catch (const std::bad_alloc&) {
        return complain("there is not enough memory for this", FAILED);
    } catch (const std::exception& error) {
        return complain(std::string("unexpected failure: ") + error.what(), FAILED);
    }
}

int runProgram(int argc, char** argv) {
    watchForInterrupts();
    qutil::Log::setReportingLevel(0); // results of components are told in the program's own words
    const std::unique_ptr<CLI::App> program = makeCommandLine();
    return run(*program, argc, argv);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return runProgram(argc, argv);
    } catch (...) {
        return complain("unexpected failure", FAILED);
    }
}
