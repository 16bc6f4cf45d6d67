// help: prints the text of --help.
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "commands/Commands.h"
#include "options/Validators.h"
#include "terminal/Output.h"

namespace zqx::app {

namespace {

std::vector<const CLI::App*> allCommands(const CLI::App& program) {
    return program.get_subcommands([](const CLI::App*) { return true; });
}

/// Calls the formatter directly: the program object would return the help of the command that is running, which is this
/// one.
std::string helpText(const CLI::App& program, const std::string& name) {
    const std::vector<const CLI::App*> commands = allCommands(program);
    const auto command = std::ranges::find(commands, name, [](const CLI::App* known) { return known->get_name(); });
    const bool found = command != commands.end();
    return program.get_formatter()->make_help(
        found ? *command : &program, program.get_name() + (found ? " " + name : ""), CLI::AppFormatMode::Normal);
}

} // namespace

void addHelpCommand(CLI::App& program) {
    std::vector<std::string> names;
    for (const CLI::App* command : allCommands(program)) {
        names.push_back(command->get_name());
    }
    CLI::App& command = *program.add_subcommand("help", "Explain the program or one of its commands");
    const auto name = std::make_shared<std::string>();
    command.add_option("COMMAND", *name, "The command to explain [the program]")->check(requireOneOf(names));
    command.footer("\nExit codes: 0 success, 1 standard output could not be written, 2 there is no such command.\n");
    command.callback([&program, name] { print(helpText(program, *name)); });
}

} // namespace zqx::app
