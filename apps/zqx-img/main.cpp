// The command line program: runs the command that was asked for, and turns whatever goes wrong into one line and an
// exit code.
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
#include "terminal/Interrupts.h"
#include "terminal/Output.h"
#include "terminal/System.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/tools/parameters/Remarks.h"

namespace {

using namespace zqx::app;
using namespace zqx::pictures;
using zqx::tools::RemarksError;

constexpr int DONE = 0;
constexpr int FAILED = 1;
constexpr int WRONG_USAGE = 2;

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

/// Help and the version arrive as exceptions, when nothing else is to be done.
void parseAndRun(CLI::App& program, const std::vector<const char*>& words) {
    try {
        program.parse(static_cast<int>(words.size()), words.data());
    } catch (const CLI::Success& request) {
        std::ostringstream text;
        program.exit(request, text, text);
        print(text.str());
    }
}

int run(CLI::App& program, const std::vector<const char*>& words) {
    try {
        parseAndRun(program, words);
        return DONE;
    } catch (const CLI::ParseError& error) {
        complain(error.what());
        return complainAndReturn(WRONG_USAGE, "see \"zqx-img --help\"");
    } catch (const ExitCode& code) {
        return code.value;
    } catch (const RemarksError& error) {
        complain(error.what());
        std::ranges::for_each(error.remarks(), complain);
        return FAILED;
    } catch (const UsageError& error) {
        return complainAndReturn(WRONG_USAGE, error.what());
    } catch (const Error& error) {
        return complainAndReturn(FAILED, error.what());
    } catch (const std::bad_alloc&) {
        return complainAndReturn(FAILED, "there is not enough memory for this");
    } catch (const std::exception& error) {
        return complainAndReturn(FAILED, std::string("unexpected failure: ") + error.what());
    }
}

int runProgram(int argc, char** argv) {
    prepareStandardStreams();
    watchForInterrupts();
    const WarningListener listener(printWarning);
    qutil::Log::setReportingLevel(0); // results of components are told in the program's own words
    const std::unique_ptr<CLI::App> program = makeCommandLine();
    return run(*program, commandLine(argc, argv));
}

} // namespace

int main(int argc, char** argv) {
    try {
        return runProgram(argc, argv);
    } catch (...) {
        return complainAndReturn(FAILED, "unexpected failure");
    }
}
