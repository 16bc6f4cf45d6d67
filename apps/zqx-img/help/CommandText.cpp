// Converts the objects of the command line library to text, and lays out --help.
#include "help/CommandText.h"

#include <algorithm>
#include <functional>
#include <sstream>
#include <string_view>

#include <CLI/CLI.hpp>

#include "zqx/text/Width.h"

namespace zqx::app {

namespace {

constexpr std::size_t WIDTH = 100;
constexpr std::size_t COLUMN = 30; // where descriptions begin

/// Validators that accept a list of words append it to the type name as "{one,two}".
std::vector<std::string> parseChoices(const std::string& typeName) {
    const std::size_t open = typeName.find('{');
    const std::size_t close = typeName.rfind('}');
    std::vector<std::string> choices;
    if (open == std::string::npos || close == std::string::npos || close < open) {
        return choices;
    }
    std::istringstream words(typeName.substr(open + 1, close - open - 1));
    for (std::string word; std::getline(words, word, ',');) {
        choices.push_back(word);
    }
    return choices;
}

OptionText describeOption(const CLI::Option& option) {
    OptionText text;
    text.positional = option.get_positional();
    if (text.positional) {
        text.names.push_back(option.get_name(true));
    }
    for (const std::string& name : option.get_snames()) {
        text.names.push_back("-" + name);
    }
    for (const std::string& name : option.get_lnames()) {
        text.names.push_back("--" + name);
    }
    const std::string typeName = option.get_type_name();
    if (option.get_type_size_max() > 0) {
        text.value = typeName.substr(0, typeName.find(':')); // validators append their own description
    }
    text.choices = parseChoices(typeName);
    text.description = option.get_description();
    text.defaultValue = option.get_default_str();
    text.group = option.get_group();
    text.required = option.get_required();
    text.repeated = option.get_items_expected_max() > 1;
    text.list = text.repeated && (text.positional || option.get_allow_extra_args());
    return text;
}

std::vector<std::string> splitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

bool isIndented(const std::string& line) {
    return line.starts_with(' ');
}

/// Adds one block between blank lines.
void addBlock(std::vector<SectionText>& sections, const std::vector<std::string>& lines) {
    if (lines.empty()) {
        return;
    }
    SectionText section{"", "", std::ranges::any_of(lines, isIndented)};
    std::size_t first = 0;
    if (lines.size() > 1 && !isIndented(lines[0]) && lines[0].ends_with(':') && isIndented(lines[1])) {
        section.heading = lines[0].substr(0, lines[0].size() - 1);
        first = 1;
    } else if (constexpr std::string_view EXIT_CODES = "Exit codes: "; lines[0].starts_with(EXIT_CODES)) {
        section.heading = "Exit codes";
    }
    for (std::size_t i = first; i < lines.size(); ++i) {
        std::string line = lines[i];
        if (i == 0 && !section.heading.empty()) {
            line.erase(0, line.find(": ") + 2);
        }
        section.text += (section.text.empty() ? "" : section.literal ? "\n" : " ") + line;
    }
    sections.push_back(section);
}

std::vector<SectionText> parseSections(const std::string& footer) {
    std::vector<SectionText> sections;
    std::vector<std::string> block;
    for (const std::string& line : splitLines(footer)) {
        if (line.empty()) {
            addBlock(sections, block);
            block.clear();
        } else {
            block.push_back(line);
        }
    }
    addBlock(sections, block);
    return sections;
}

std::string formatArgument(const OptionText& option) {
    std::string name = option.names.front() + (option.list ? "..." : "");
    return option.required ? name : "[" + name + "]";
}

std::string row(const std::string& name, const std::string& description) {
    std::string line = "  " + name;
    if (line.size() + 2 > COLUMN) {
        line += "\n" + std::string(COLUMN, ' ');
    } else {
        line.resize(COLUMN, ' ');
    }
    return line + text::wrapped(description, WIDTH, COLUMN) + "\n";
}

std::string formatRows(const std::vector<OptionText>& options, const std::string& group) {
    std::string rows;
    for (const OptionText& option : options) {
        if (option.positional ? group == "Arguments" : option.group == group) {
            std::string description = option.description;
            if (!option.defaultValue.empty()) {
                description += " (default " + option.defaultValue + ")";
            }
            rows += row(formatSynopsis(option), description);
        }
    }
    return rows;
}

std::vector<std::string> collectGroups(const std::vector<OptionText>& options) {
    std::vector<std::string> groups{"Arguments"};
    for (const OptionText& option : options) {
        if (!option.positional && std::ranges::find(groups, option.group) == groups.end()) {
            groups.push_back(option.group);
        }
    }
    return groups;
}

class HelpFormatter : public CLI::FormatterBase {
public:
    std::string make_help(const CLI::App* app, std::string name, CLI::AppFormatMode) const override {
        const CommandText command = describe(*app);
        // A command's name arrives with its parents in front.
        const std::size_t space = name.rfind(' ');
        std::string help = text::wrapped(command.description, WIDTH, 0) + "\n\nUsage: " +
                           formatUsage(command, space == std::string::npos ? "" : name.substr(0, space)) + "\n";
        for (const std::string& group : collectGroups(command.options)) {
            if (const std::string rows = formatRows(command.options, group); !rows.empty()) {
                help += '\n';
                help += group;
                help += ":\n";
                help += rows;
            }
        }
        if (!command.commands.empty()) {
            help += "\nCommands:\n";
            for (const CommandText& child : command.commands) {
                help += row(child.name, child.description);
            }
        }
        const std::string footer = app->get_footer();
        return help + (footer.starts_with('\n') ? "" : "\n") + footer;
    }
};

} // namespace

CommandText describe(const CLI::App& app) {
    CommandText text{app.get_name(), app.get_description(), {}, parseSections(app.get_footer()), {}};
    for (const CLI::Option* option : app.get_options()) {
        if (!option->get_group().empty()) { // hidden
            text.options.push_back(describeOption(*option));
        }
    }
    std::stable_partition(text.options.begin(), text.options.end(), std::mem_fn(&OptionText::positional));
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        if (!command->get_group().empty()) {
            text.commands.push_back(describe(*command));
        }
    }
    return text;
}

std::string formatUsage(const CommandText& command, const std::string& prefix) {
    std::string usage = prefix + (prefix.empty() ? "" : " ") + command.name + " [OPTIONS]";
    for (const OptionText& option : command.options) {
        if (option.positional) {
            usage += " " + formatArgument(option);
        } else if (option.required) {
            usage += " " + option.names.front() + " " + option.value;
        }
    }
    return command.commands.empty() ? usage : usage + " COMMAND";
}

std::string formatSynopsis(const OptionText& option) {
    std::string synopsis;
    for (const std::string& name : option.names) {
        synopsis += (synopsis.empty() ? "" : ", ") + name;
    }
    if (option.positional) {
        return synopsis + (option.list ? "..." : "");
    }
    if (option.names.size() == 1 && option.names[0].starts_with("--")) {
        synopsis.insert(0, 4, ' '); // under the long names of those that have a short one
    }
    return synopsis + (option.value.empty() ? "" : " " + option.value) + (option.list ? "..." : "");
}

std::shared_ptr<CLI::FormatterBase> makeHelpFormatter() {
    return std::make_shared<HelpFormatter>();
}

} // namespace zqx::app
