// The command line program: runs the command that was asked for, and turns whatever goes wrong into one line and an
// exit code.
#include <cstdio>
#include <exception>
#include <memory>
#include <new>

#include <CLI/CLI.hpp>
#include <qutil/Log.h>

#include "CommandLine.h"
#include "Error.h"
#include "Interrupts.h"

namespace {

using namespace zqx::img::app;

constexpr int DONE = 0;
constexpr int FAILED = 1;
constexpr int WRONG_USAGE = 2;

int complain(const char* text, int code) {
    std::fprintf(stderr, "zqx-img: %s\n", text);
    return code;
}

int run(CLI::App& program, int argc, char** argv) {
    try {
        program.parse(argc, argv);
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
        return complain((std::string("unexpected failure: ") + error.what()).c_str(), FAILED);
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
