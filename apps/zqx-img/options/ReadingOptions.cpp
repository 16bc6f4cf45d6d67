// The options for reading picture files.
#include "options/ReadingOptions.h"

#include <string>

#include <CLI/CLI.hpp>

#include "options/SizeOption.h"
#include "options/Validators.h"
#include "zqx/pictures/isolation/IsolatedDecoder.h"

namespace zqx::app {

using namespace pictures;

namespace {

constexpr const char* GROUP = "Limits";

} // namespace

void addLimitOptions(CLI::App& command, pictures::Limits& limits) {
    addCountOption(command, "--max-width", limits.width, std::to_string(limits.width), "Refuse wider pictures")
        ->group(GROUP);
    addCountOption(command, "--max-height", limits.height, std::to_string(limits.height), "Refuse taller pictures")
        ->group(GROUP);
    addCountOption(command, "--max-pixels", limits.pixels, "500M", "Refuse pictures with more pixels")->group(GROUP);
    addSizeOption(command, "--max-bytes", limits.bytes, "4G", "Refuse larger files")->group(GROUP);
}

void addReadingOptions(CLI::App& command, pictures::ReadOptions& options) {
    addLimitOptions(command, options.limits);
    const auto turnOn = [&options] {
        if (!pictures::canIsolate()) {
            throw CLI::ValidationError("--isolate", "is not supported on this system");
        }
        options.isolate = true;
    };
    CLI::Option* on = command.add_flag_callback(
        "--isolate", turnOn,
        "Decode each picture in a separate process, so that a damaged or hostile file can crash nothing else");
    CLI::Option* off = command.add_flag_callback(
        "--no-isolate", [&options] { options.isolate = false; },
        "Decode in this process, which saves starting one for each picture");
    CLI::Option* weak = command.add_flag_callback(
        "--weak-isolation",
        [&options, turnOn] {
            turnOn();
            options.requireConfinement = false;
        },
        "Isolate even if the system cannot confine the separate process, which then has all of your permissions; "
        "implies "
        "--isolate");
    CLI::Option* memory =
        addSizeOption(command, "--decode-memory", options.decodeMemory, "half of the memory, at least 4G",
                      "Memory that the separate process may use; implies --isolate");
    CLI::Option* time = command
                            .add_option("--decode-time", options.decodeSeconds,
                                        "Time that the separate process may take for a picture; implies --isolate")
                            ->type_name("SECONDS")
                            ->check(seconds(0.001, 1e6))
                            ->capture_default_str();
    off->excludes(on)->excludes(weak)->excludes(memory)->excludes(time);
    for (CLI::Option* option : {on, weak, off, memory, time}) {
        option->group(GROUP);
    }
    for (CLI::Option* option : {memory, time}) {
        option->each([turnOn](const std::string&) { turnOn(); });
    }
}

} // namespace zqx::app
