// The command line program: runs the chosen command, and converts failures to messages and exit codes.
#include <algorithm>
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
#include "terminal/Interrupts.h"
#include "terminal/Output.h"
#include "terminal/System.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/metadata/exiv2/Exiv2Codec.h"
#include "zqx/tools/parameters/Remarks.h"

namespace {

using namespace zqx::app;
using namespace zqx::pictures;
using zqx::tools::RemarksError;

constexpr int SUCCESS = 0;
constexpr int FAILURE = 1;
constexpr int INVALID_COMMAND_LINE = 2;

int complainAndReturn(int code, std::string_view text) {
    complain(text);
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

/// The last line is advice from the program; earlier line breaks are part of what the user typed.
int complainOfCommandLine(const std::string& problem) {
    const std::size_t end = problem.rfind('\n');
    complain(std::string_view(problem).substr(0, end));
    return complainAndReturn(INVALID_COMMAND_LINE, std::string_view(problem).substr(end + 1));
}

/// The command line library throws also for --help and --version.
int answer(const CLI::App& program, const CLI::ParseError& error, const std::vector<const char*>& words) {
    if (error.get_exit_code() != 0) {
        return complainOfCommandLine(describeProblem(program, error, words));
    }
    std::ostringstream text;
    program.exit(error, text, text);
    print(text.str());
    return SUCCESS;
}

int parseAndRun(CLI::App& program, const std::vector<const char*>& words) {
    try {
        program.parse(static_cast<int>(words.size()), words.data());
        return SUCCESS;
    } catch (const CLI::ParseError& error) {
        return answer(program, error, words);
    }
}

int run(CLI::App& program, const std::vector<const char*>& words) {
    try {
        return parseAndRun(program, words);
    } catch (const ExitCode& code) {
        return code.value;
    } catch (const RemarksError& error) {
        complain(RemarksError::heading());
        std::ranges::for_each(error.remarks(), complain);
        return FAILURE;
    } catch (const UsageError& error) {
        return complainAndReturn(INVALID_COMMAND_LINE, error.what());
    } catch (const Error& error) {
        return complainAndReturn(FAILURE, error.what());
    } catch (const std::bad_alloc&) {
        return complainAndReturn(FAILURE, "out of memory; close other programs or use a smaller picture");
    } catch (const std::exception& error) {
        return complainAndReturn(FAILURE, std::string("unexpected failure: ") + error.what());
    }
}

int runProgram(int argc, char** argv) {
    prepareStandardStreams();
    watchForInterrupts();
    setWarningHandler([](const std::string& line) { printWarning(line); });
    installExiv2();
    qutil::Log::setReportingLevel(0); // failures are reported by the program's own messages
    const std::unique_ptr<CLI::App> program = makeCommandLine();
    return run(*program, commandLine(argc, argv));
}

} // namespace

int main(int argc, char** argv) {
    try {
        return runProgram(argc, argv);
    } catch (...) {
        return complainAndReturn(FAILURE, "unexpected failure");
    }
}
