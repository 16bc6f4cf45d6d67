// The command line program: runs the chosen command, and turns whatever goes wrong into a line and an exit code.
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
#include "zqx/pictures/metadata/exiv2/Exiv2Codec.h"

namespace {

using namespace zqx::app;
using namespace zqx::pictures;

constexpr int SUCCESS = 0;
constexpr int FAILURE = 1;
constexpr int INVALID_COMMAND_LINE = 2;

/// Prints each line of the text with the name of the program, without allocating memory, which may be what is missing.
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
        return complain(describeProblem(program, error, words), INVALID_COMMAND_LINE);
    }
    std::ostringstream text;
    program.exit(error, text, text);
    print(text.str());
    return SUCCESS;
}

int parseAndRun(CLI::App& program, const std::vector<const char*>& words) {
    try {
        program.parse(static_cast<int>(words.size()), words.data());
        return std::fflush(stdout) == 0 ? SUCCESS : complain("standard output: could not be written", FAILURE);
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
        return complain(error.what(), INVALID_COMMAND_LINE);
    } catch (const Error& error) {
        return complain(error.what(), FAILURE);
    } catch (const std::bad_alloc&) {
        return complain("out of memory; close other programs or use a smaller picture", FAILURE);
    } catch (const std::exception& error) {
        return complain(std::string("unexpected failure: ") + error.what(), FAILURE);
    }
}

int runProgram(int argc, char** argv) {
    watchForInterrupts();
    setWarningHandler([](const std::string& line) { complain("warning: " + line, SUCCESS); });
    installExiv2();
    qutil::Log::setReportingLevel(0); // failures of components are reported in the words of the program
    const std::unique_ptr<CLI::App> program = makeCommandLine();
    return run(*program, commandLine(argc, argv));
}

} // namespace

int main(int argc, char** argv) {
    try {
        return runProgram(argc, argv);
    } catch (...) {
        return complain("unexpected failure", FAILURE);
    }
}
