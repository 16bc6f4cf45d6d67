// The command line program: runs the command that was asked for, and turns whatever goes wrong into one line and an
// exit code.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>
#include <qutil/Log.h>

#include "commands/CommandLine.h"
#include "help/CommandLineProblem.h"
#include "terminal/Terminal.h"
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

/// Help and version arrive as exceptions, too.
int answer(const CLI::App& program, const CLI::ParseError& error, const std::vector<const char*>& words) {
    if (error.get_exit_code() != 0) {
        return complain(describeProblem(program, error, words), WRONG_USAGE);
    }
    std::ostringstream text;
    program.exit(error, text, text);
    print(text.str());
    return DONE;
}

int parseAndRun(CLI::App& program, const std::vector<const char*>& words) {
    try {
        program.parse(static_cast<int>(words.size()), words.data());
        return std::fflush(stdout) == 0 ? DONE : complain("standard output: could not be written", FAILED);
    } catch (const CLI::ParseError& error) {
        return answer(program, error, words);
    }
}

int run(CLI::App& program, const std::vector<const char*>& words) {
    try {
        return parseAndRun(program, words);
    } catch (const ExitCode& code) {
        return code.value;
    } catch (const UsageError& error) {
        return complain(error.what(), WRONG_USAGE);
    } catch (const Error& error) {
        return complain(error.what(), FAILED);
    } catch (const std::bad_alloc&) {
        return complain("out of memory; close other programs or use a smaller picture", FAILED);
    } catch (const std::exception& error) {
        return complain(std::string("unexpected failure: ") + error.what(), FAILED);
    }
}

int runProgram(int argc, char** argv) {
    watchForInterrupts();
    qutil::Log::setReportingLevel(0); // results of components are told in the program's own words
    const std::unique_ptr<CLI::App> program = makeCommandLine();
    return run(*program, commandLine(argc, argv));
}

} // namespace

int main(int argc, char** argv) {
    try {
        return runProgram(argc, argv);
    } catch (...) {
        return complain("unexpected failure", FAILED);
    }
}
