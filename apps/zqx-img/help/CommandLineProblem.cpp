// Improves the messages of the command line library: from the words that it left unparsed and the known names, guesses
// what the user most likely meant.
#include "help/CommandLineProblem.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include "help/CommandText.h"
#include "help/Suggestions.h"
#include "zqx/pictures/files/InputFile.h"
#include "zqx/tools/parameters/ParameterTable.h"

namespace zqx::app {

namespace {

using Words = std::span<const char* const>;

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::vector<const CLI::App*> allCommands(const CLI::App& program) {
    return program.get_subcommands([](const CLI::App*) { return true; });
}

/// The command that was given, or the program itself.
const CLI::App& chosenCommand(const CLI::App& program) {
    const std::vector<const CLI::App*> commands = allCommands(program);
    const auto chosen = std::ranges::find_if(commands, [](const CLI::App* command) { return command->count() > 0; });
    return chosen != commands.end() ? **chosen : program;
}

std::vector<std::string> commandNames(const CLI::App& program) {
    std::vector<std::string> names;
    for (const CLI::App* command : allCommands(program)) {
        names.push_back(command->get_name());
    }
    return names;
}

std::vector<std::string> optionNames(const CLI::App& command) {
    std::vector<std::string> names;
    for (const CLI::Option* option : command.get_options()) {
        for (const std::string& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

bool has(const CLI::App& command, const std::string& option) {
    return command.get_option_no_throw(option) != nullptr;
}

/// The first word that was not parsed, except "--".
std::optional<std::string> firstUnexpected(const CLI::App& command) {
    const std::vector<std::string> words = command.remaining();
    const auto first = std::ranges::find_if(words, [](const std::string& word) { return word != "--"; });
    return first != words.end() ? std::optional(*first) : std::nullopt;
}

/// Appended to messages about missing or unexpected arguments.
std::string usageLine(const CLI::App& program, const CLI::App& command) {
    return "; usage: " + formatUsage(describe(command), &command == &program ? "" : program.get_name());
}

std::string describeUnknownCommand(const std::string& word, const CLI::App& program) {
    std::error_code failure;
    const std::filesystem::file_status status = std::filesystem::status(pictures::toPath(word), failure);
    if (std::filesystem::is_directory(status)) {
        return quoted(word) + " is a folder, not a command; did you mean \"zqx-img apply " + word +
               " --output-dir DIR\"?";
    }
    if (std::filesystem::exists(status)) {
        return quoted(word) + " is a file, not a command; did you mean \"zqx-img apply " + word + " -o FILE\"?";
    }
    return "unknown command " + quoted(word) + didYouMean(word, commandNames(program));
}

/// Whether a word can be the value of an option: of values, only numbers begin with a dash.
bool isValue(std::string_view word) {
    return !word.starts_with('-') || (word.size() > 1 && (std::isdigit(static_cast<unsigned char>(word[1])) != 0));
}

/// An unknown option as given on the command line.
struct UnknownOption {
    UnknownOption(const std::string& word, Words words) : name(word.substr(0, word.find('='))) {
        if (name.size() < word.size()) {
            value = word.substr(name.size() + 1);
        } else if (const auto place = std::ranges::find(words, std::string_view(word));
                   words.end() - place > 1 && isValue(place[1])) {
            value = place[1];
        }
    }

    std::string name;
    std::string value = "VALUE";
};

/// Users may take adjustments for options: "--exposure 1" instead of "--set exposure=1".
std::vector<std::string> adjustmentsAsOptions() {
    std::vector<std::string> names;
    for (const tools::Parameter& parameter : tools::parameters()) {
        names.push_back("--" + std::string(parameter.name));
    }
    return names;
}

std::string suggestOption(const CLI::App& program, const CLI::App& command, const UnknownOption& option) {
    for (const CLI::App* other : allCommands(program)) {
        if (other != &command && has(*other, option.name)) {
            return "; it is an option of " + quoted(program.get_name() + " " + other->get_name());
        }
    }
    const std::vector<std::string> adjustments = adjustmentsAsOptions();
    std::vector<std::string> names = optionNames(command);
    names.insert(names.end(), adjustments.begin(), adjustments.end());
    const std::optional<std::string> nearest = nearestName(option.name, names);
    if (nearest && std::ranges::find(adjustments, *nearest) != adjustments.end()) {
        return std::string("; did you mean \"") + (has(command, "--set") ? "" : "zqx-img apply ... ") + "--set " +
               nearest->substr(2) + "=" + option.value + "\"?";
    }
    return nearest ? "; did you mean " + quoted(*nearest) + "?" : "";
}

std::string describeUnexpected(const std::string& word, const CLI::App& program, const CLI::App& command, Words words) {
    const bool isOption = word.starts_with('-') && word.size() > 1;
    if (isOption) {
        const UnknownOption option(word, words);
        return (&command == &program ? "" : command.get_name() + ": ") + "unknown option " + quoted(option.name) +
               suggestOption(program, command, option);
    }
    return &command == &program
               ? describeUnknownCommand(word, program)
               : command.get_name() + ": unexpected argument " + quoted(word) + usageLine(program, command);
}

/// @param words "NAME is required", for an argument or an option
std::string describeMissing(const CLI::App& program, const CLI::App& command, const std::string& words) {
    if (&command == &program) {
        return "missing command";
    }
    return command.get_name() + ": missing " + words.substr(0, words.find(' ')) + usageLine(program, command);
}

/// Rephrases messages of the command line library.
std::string inPlainWords(const CLI::App& program, const CLI::App& command, const CLI::ParseError& error) {
    std::string words = error.what();
    const std::string subject = words.substr(0, words.find_first_of(": "));
    if (error.get_name() == "RequiredError") {
        return describeMissing(program, command, words);
    }
    if (error.get_name() == "ExcludesError") {
        return subject + " cannot be combined with " + words.substr(words.rfind(' ') + 1);
    }
    if (error.get_name() == "ArgumentMismatch") {
        if (words.ends_with(" missing")) {
            const CLI::Option* option = command.get_option_no_throw(subject);
            const std::string value = option != nullptr ? option->get_type_name() : "value";
            return subject + ": missing " + value.substr(0, value.find(':')); // without what validators append
        }
        return subject + (words.find("override") != std::string::npos ? ": takes no value" : ": given more than once");
    }
    return words;
}

} // namespace

std::string describeProblem(const CLI::App& program, const CLI::ParseError& error, Words words) {
    const CLI::App& command = chosenCommand(program);
    // Unknown words come first, since they are often the reason why something else is missing.
    std::string problem;
    if (const std::optional<std::string> word = firstUnexpected(program)) {
        problem = describeUnexpected(*word, program, program, words);
    } else if (const std::optional<std::string> argument = firstUnexpected(command)) {
        problem = describeUnexpected(*argument, program, command, words);
    } else {
        problem = inPlainWords(program, command, error);
    }
    const std::string name = program.get_name() + (&command == &program ? "" : " " + command.get_name());
    return problem + "\nsee " + quoted(name + " --help");
}

} // namespace zqx::app
