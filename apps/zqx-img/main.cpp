// The command line program: sets up the commands, and turns whatever goes wrong into one line and an exit code.
#include <cstdio>
#include <exception>
#include <new>

#include <CLI/CLI.hpp>
#include <FreeImage.h>

#include <qutil/Log.h>

#include "Commands.h"
#include "Error.h"

namespace {

using namespace zqx::img::app;

constexpr int DONE = 0;
constexpr int FAILED = 1;
constexpr int WRONG_USAGE = 2;

constexpr const char* FOOTER = R"(Examples:
  zqx-img apply in.jpg -o out.jpg --set exposure=0.5 --set saturation=1.2
  zqx-img apply in.png -o out.tif --params look.json --before-after compare.png
  zqx-img denoise noisy.exr --albedo albedo.exr --normal normal.exr -o clean.exr
  zqx-img params --set temperature=5000 -o look.json
  zqx-img lut --params look.json -o look.cube
  zqx-img info in.jpg

"zqx-img COMMAND --help" explains a command. A file name that begins with a dash goes after "--".

Exit codes: 0 done, 1 something failed (nothing is left half written), 2 the command line cannot be meant.
)";

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
    qutil::Log::setReportingLevel(0); // results of components are told in the program's own words
    CLI::App program("Adjusts photographs and rendered pictures: exposure, contrast, colour, sharpness, flips, noise.",
                     "zqx-img");
    program.set_version_flag("--version",
                             std::string("zqx-img " ZQX_IMG_VERSION " (FreeImage ") + FreeImage_GetVersion() + ")");
    program.require_subcommand(1);
    program.footer(FOOTER);
    addApplyCommand(program);
    addDenoiseCommand(program);
    addParamsCommand(program);
    addLutCommand(program);
    addInfoCommand(program);
    return run(program, argc, argv);
}

} // namespace

int main(int argc, char** argv) {
    try {
        return runProgram(argc, argv);
    } catch (...) {
        return complain("unexpected failure", FAILED);
    }
}
