// One script per shell. The placeholder of a value determines its completion: FILE and DIR are completed with names of
// files and folders, NAME=VALUE with adjustments, and a list of words with these words. Other values are not completed.
#include "help/manual/Completions.h"

#include <algorithm>

namespace zqx::app {

namespace {

enum class Kind { NOTHING, FILES, FOLDERS, ADJUSTMENT, WORDS };

Kind valueKind(const OptionText& option) {
    if (!option.choices.empty()) {
        return Kind::WORDS;
    }
    if (option.value.starts_with("FILE")) {
        return Kind::FILES;
    }
    if (option.value.starts_with("DIR")) {
        return Kind::FOLDERS;
    }
    return option.value == "NAME=VALUE" ? Kind::ADJUSTMENT : Kind::NOTHING;
}

std::string joined(std::span<const std::string> words, const std::string& between, const std::string& behind = "") {
    std::string text;
    for (const std::string& word : words) {
        if (!text.empty()) {
            text += between;
        }
        text += word;
        text += behind;
    }
    return text;
}

bool takesFiles(const CommandText& command) {
    return std::ranges::any_of(command.options, [](const OptionText& option) {
        return option.positional && (valueKind(option) == Kind::FILES || valueKind(option) == Kind::FOLDERS);
    });
}

std::string optionNames(const CommandText& command) {
    std::string names;
    for (const OptionText& option : command.options) {
        if (!option.positional) {
            names += (names.empty() ? "" : " ") + joined(option.names, " ");
        }
    }
    return names;
}

std::string commandNames(const CommandText& program) {
    std::string names;
    for (const CommandText& command : program.commands) {
        names += (names.empty() ? "" : " ") + command.name;
    }
    return names;
}

/// Quotes text for a shell. A single quote in it closes the quotation, is escaped, and opens it again.
std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text) {
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return result + "'";
}

std::string bashAnswer(const OptionText& option) {
    switch (valueKind(option)) {
    case Kind::FILES: return "_zqx_img_files -f";
    case Kind::FOLDERS: return "_zqx_img_files -d";
    case Kind::ADJUSTMENT: return "_zqx_img_adjustments";
    case Kind::WORDS:
        return "mapfile -t COMPREPLY < <(compgen -W " + quoted(joined(option.choices, " ")) + " -- \"$word\")";
    case Kind::NOTHING: break;
    }
    return ":";
}

/// Patterns of "command option distance" at which the value of an option is being typed.
std::string bashCase(const CommandText& command, const OptionText& option) {
    std::string patterns;
    for (const std::string& name : option.names) {
        const std::string mention = command.name + " " + name + " ";
        patterns += (patterns.empty() ? "" : " | ") + (option.list ? quoted(mention) + "*" : quoted(mention + "1"));
    }
    return "    " + patterns + ") " + bashAnswer(option) + "; return ;;\n";
}

std::string zshText(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == ':' || c == '[' || c == ']' || c == '\\') {
            result += '\\';
        }
        result += c;
    }
    return result;
}

std::string zshValue(const OptionText& option) {
    const std::string message = ":" + zshText(option.positional ? option.names.front() : option.value) + ":";
    switch (valueKind(option)) {
    case Kind::FILES: return message + "_files";
    case Kind::FOLDERS: return message + "_files -/";
    case Kind::ADJUSTMENT: return message + "_zqx_img_adjustments";
    case Kind::WORDS: return message + "(" + joined(option.choices, " ") + ")";
    case Kind::NOTHING: break;
    }
    return message + " ";
}

std::string zshArgument(const OptionText& option) {
    if (option.positional) {
        return quoted((option.list ? "*" : "") + zshValue(option));
    }
    const std::string rest = "[" + zshText(option.description) + "]" + (option.value.empty() ? "" : zshValue(option));
    const std::string exclusion = option.repeated ? "*" : "(" + joined(option.names, " ") + ")";
    std::string lines;
    for (const std::string& name : option.names) {
        if (!lines.empty()) {
            lines += " \\\n            ";
        }
        std::string argument = exclusion;
        argument += name;
        argument += rest;
        lines += quoted(argument);
    }
    return lines;
}

std::string zshCommand(const CommandText& command) {
    std::string text = "        " + command.name + ")\n        _arguments -s";
    for (const OptionText& option : command.options) {
        text += " \\\n            " + zshArgument(option);
    }
    return text + "\n        ;;\n";
}

std::string fishOption(const std::string& condition, const OptionText& option,
                       std::span<const std::string> adjustments) {
    std::string line = "complete -c zqx-img -n " + quoted(condition);
    for (const std::string& name : option.names) {
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    }
    if (!option.value.empty()) {
        switch (valueKind(option)) {
        case Kind::FILES: line += " -r -F"; break;
        case Kind::FOLDERS: line += " -x -a '(__fish_complete_directories)'"; break;
        case Kind::ADJUSTMENT: line += " -x -a " + quoted(joined(adjustments, " ", "=")); break;
        case Kind::WORDS: line += " -x -a " + quoted(joined(option.choices, " ")); break;
        case Kind::NOTHING: line += " -x"; break;
        }
    }
    return line + " -d " + quoted(option.description) + "\n";
}

} // namespace

std::string bashCompletion(const CommandText& program, std::span<const std::string> adjustments) {
    std::string cases;
    std::string options;
    std::string withFiles;
    std::string withWords;
    for (const CommandText& command : program.commands) {
        for (const OptionText& option : command.options) {
            if (!option.positional && !option.value.empty()) {
                cases += bashCase(command, option);
            } else if (option.positional && valueKind(option) == Kind::WORDS) {
                withWords += "    " + command.name + ") " + bashAnswer(option) + " ;;\n";
            }
        }
        options += "    " + command.name + ") options='" + optionNames(command) + "' ;;\n";
        if (takesFiles(command)) {
            withFiles += (withFiles.empty() ? "" : " | ") + command.name;
        }
    }
    return R"bash(# Completion of zqx-img for bash, made from the program's own options.
_zqx_img_files() {
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen "$1" -- "$word")
}

_zqx_img_adjustments() {
    compopt -o nospace
    mapfile -t COMPREPLY < <(compgen -S = -W ')bash" +
           joined(adjustments, " ") + R"bash(' -- "$word")
}

_zqx_img() {
    local word=${COMP_WORDS[COMP_CWORD]} command='' option='' options='' i
    COMPREPLY=()
    for ((i = 1; i < COMP_CWORD; i++)); do
        if [[ ${COMP_WORDS[i]} != -* ]]; then
            command=${COMP_WORDS[i]}
            break
        fi
    done
    for ((i = COMP_CWORD - 1; i > 0; i--)); do
        if [[ ${COMP_WORDS[i]} == -* ]]; then
            option=${COMP_WORDS[i]}
            break
        fi
    done
    case "$command $option $((COMP_CWORD - i))" in
)bash" + cases +
           R"bash(    esac
    case $command in
    '') options=')bash" +
           commandNames(program) + " " + optionNames(program) + R"bash(' ;;
)bash" + options +
           R"bash(    esac
    if [[ -z $command || $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
        return
    fi
    case $command in
    )bash" +
           withFiles + R"bash() _zqx_img_files -f ;;
)bash" + withWords +
           R"bash(    esac
}
complete -F _zqx_img zqx-img
)bash";
}

std::string zshCompletion(const CommandText& program, std::span<const std::string> adjustments) {
    std::string options;
    std::string commands;
    std::string cases;
    for (const OptionText& option : program.options) {
        options += " \\\n        " + zshArgument(option);
    }
    for (const CommandText& command : program.commands) {
        commands += "        " + quoted(command.name + ":" + zshText(command.description)) + "\n";
        cases += zshCommand(command);
    }
    return R"(#compdef zqx-img
# Completion of zqx-img for zsh, made from the program's own options.
_zqx_img_adjustments() {
    compadd -S '' -- )" +
           joined(adjustments, " ", "=") + R"(
}

_zqx_img() {
    local state line
    local -a commands
    typeset -A opt_args
    _arguments -C)" +
           options + R"( \
        '1: :->command' \
        '*:: :->arguments'
    case $state in
    command)
        commands=(
)" + commands +
           R"(        )
        _describe -t commands command commands
        ;;
    arguments)
        case $line[1] in
)" + cases +
           R"(        esac
        ;;
    esac
}

_zqx_img "$@"
)";
}

std::string fishCompletion(const CommandText& program, std::span<const std::string> adjustments) {
    std::string script = "# Completion of zqx-img for fish, made from the program's own options.\n"
                         "complete -c zqx-img -f\n";
    for (const OptionText& option : program.options) {
        script += fishOption("__fish_use_subcommand", option, adjustments);
    }
    for (const CommandText& command : program.commands) {
        script += "complete -c zqx-img -n __fish_use_subcommand -a " + command.name + " -d " +
                  quoted(command.description) + "\n";
        const std::string condition = "__fish_seen_subcommand_from " + command.name;
        for (const OptionText& option : command.options) {
            if (!option.positional) {
                script += fishOption(condition, option, adjustments);
            } else if (valueKind(option) == Kind::WORDS) {
                script += "complete -c zqx-img -n " + quoted(condition) + " -x -a " +
                          quoted(joined(option.choices, " ")) + "\n";
            }
        }
        if (takesFiles(command)) {
            script += "complete -c zqx-img -n " + quoted(condition) + " -F\n";
        }
    }
    return script;
}

} // namespace zqx::app
