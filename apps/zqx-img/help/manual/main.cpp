// Writes the manual pages and shell completions of the program to a folder: zqx_img_manual FOLDER DATE
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "commands/CommandLine.h"
#include "help/CommandText.h"
#include "help/manual/Completions.h"
#include "help/manual/ManualPage.h"
#include "zqx/pictures/files/OutputFile.h"
#include "zqx/tools/parameters/ParameterTable.h"

namespace {

using namespace zqx::app;
using namespace zqx::tools;

void write(const std::filesystem::path& file, const std::string& text) {
    std::filesystem::create_directories(file.parent_path());
    zqx::pictures::OutputFile output(zqx::pictures::toName(file));
    output.write(text);
    output.commit();
}

std::vector<std::string> adjustmentNames() {
    std::vector<std::string> names;
    for (const Parameter& parameter : parameters()) {
        names.emplace_back(parameter.name);
    }
    return names;
}

void writeAll(const std::filesystem::path& folder, const ManualInfo& info) {
    const CommandText program = describe(*makeCommandLine());
    write(folder / "man1" / (program.name + ".1"), programPage(program, info));
    for (const CommandText& command : program.commands) {
        write(folder / "man1" / (program.name + "-" + command.name + ".1"), commandPage(program, command, info));
    }
    const std::vector<std::string> adjustments = adjustmentNames();
    write(folder / "bash" / "zqx-img", bashCompletion(program, adjustments));
    write(folder / "zsh" / "_zqx-img", zshCompletion(program, adjustments));
    write(folder / "fish" / "zqx-img.fish", fishCompletion(program, adjustments));
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: zqx_img_manual FOLDER DATE\n");
        return 2;
    }
    try {
        writeAll(argv[1], {ZQX_IMG_VERSION, argv[2]});
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "zqx_img_manual: %s\n", error.what());
        return 1;
    }
}
