// The layout of a page follows man-pages(7).
#include "help/manual/ManualPage.h"

#include <algorithm>
#include <sstream>

namespace zqx::app {

namespace {

/// Text as roff: hyphens that are typed are no typographic hyphens, and no line may begin with a request.
std::string escaped(const std::string& text) {
    std::string result;
    bool lineStart = true;
    for (const char c : text) {
        if (lineStart && (c == '.' || c == '\'')) {
            result += "\\&";
        }
        switch (c) {
        case '\\': result += "\\e"; break;
        case '-': result += "\\-"; break;
        case '^': result += "\\(ha"; break;
        case '~': result += "\\(ti"; break;
        case '`': result += "\\(ga"; break;
        case '\'': result += "\\(aq"; break;
        default: result += c; break;
        }
        lineStart = c == '\n';
    }
    return result;
}

std::string upperCase(std::string text) {
    std::ranges::transform(text, text.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return text;
}

std::string bold(const std::string& text) {
    return "\\fB" + escaped(text) + "\\fR";
}

std::string italic(const std::string& text) {
    return "\\fI" + escaped(text) + "\\fR";
}

std::string title(const std::string& name, const ManualInfo& info) {
    return ".TH " + upperCase(escaped(name)) + " 1 " + info.date + " \"zqx_img " + info.version +
           "\" \"User Commands\"\n";
}

std::string nameSection(const std::string& name, const std::string& description) {
    std::string brief = description.substr(0, description.find(". "));
    if (brief.ends_with('.')) {
        brief.pop_back();
    }
    if (!brief.empty() && brief[0] >= 'A' && brief[0] <= 'Z' &&
        !(brief.size() > 1 && brief[1] >= 'A' && brief[1] <= 'Z')) {
        brief[0] = static_cast<char>(brief[0] + 32);
    }
    return ".SH NAME\n" + escaped(name) + " \\- " + escaped(brief) + "\n";
}

std::string synopsisSection(const CommandText& command, const std::string& name) {
    std::string line = ".SH SYNOPSIS\n.B " + escaped(name) + "\n[\\fIOPTIONS\\fR]";
    for (const OptionText& option : command.options) {
        if (option.positional) {
            const std::string value = italic(option.names.front()) + (option.list ? "..." : "");
            line += "\n" + (option.required ? value : "[" + value + "]");
        } else if (option.required) {
            line += "\n" + bold(option.names.front()) + " " + italic(option.value);
        }
    }
    return line + (command.commands.empty() ? "\n" : "\n\\fICOMMAND\\fR\n");
}

std::string optionEntry(const OptionText& option) {
    std::string entry = ".TP\n";
    for (std::size_t i = 0; i < option.names.size(); ++i) {
        entry += (i > 0 ? ", " : "") + (option.positional ? italic(option.names[i]) : bold(option.names[i]));
    }
    if (!option.positional && !option.value.empty()) {
        entry += " " + italic(option.value);
    }
    entry += option.list ? "...\n" : "\n";
    entry += escaped(option.description);
    if (!option.defaultValue.empty()) {
        entry += " (default " + escaped(option.defaultValue) + ")";
    }
    return entry + (option.description.ends_with('.') ? "\n" : ".\n");
}

std::string optionsSection(const CommandText& command) {
    std::string arguments;
    std::string options;
    std::string group = "Options";
    for (const OptionText& option : command.options) {
        if (option.positional) {
            arguments += optionEntry(option);
            continue;
        }
        if (option.group != group) {
            group = option.group;
            options += ".SS " + escaped(group) + "\n";
        }
        options += optionEntry(option);
    }
    return (arguments.empty() ? "" : ".SH ARGUMENTS\n" + arguments) +
           (options.empty() ? "" : ".SH OPTIONS\n" + options);
}

std::string literal(const std::string& text) {
    return ".nf\n" + escaped(text) + "\n.fi\n";
}

/// The paragraphs go under DESCRIPTION, what has a heading of its own after the options.
std::string paragraphs(const CommandText& command) {
    std::string text;
    for (const SectionText& section : command.sections) {
        if (section.heading.empty()) {
            text += ".PP\n" + (section.literal ? literal(section.text) : escaped(section.text) + "\n");
        }
    }
    return text;
}

std::string headedSections(const CommandText& command) {
    std::string text;
    for (const SectionText& section : command.sections) {
        if (!section.heading.empty()) {
            const std::string heading =
                section.heading == "Exit codes" ? "EXIT STATUS" : upperCase(escaped(section.heading));
            text += ".SH " + heading + "\n" + (section.literal ? literal(section.text) : escaped(section.text) + "\n");
        }
    }
    return text;
}

std::string pageName(const CommandText& program, const CommandText& command) {
    return program.name + "-" + command.name;
}

std::string seeAlso(const CommandText& program, const std::string& self) {
    std::vector<std::string> names;
    if (self != program.name) {
        names.push_back(program.name);
    }
    for (const CommandText& command : program.commands) {
        if (pageName(program, command) != self) {
            names.push_back(pageName(program, command));
        }
    }
    std::string text = ".SH SEE ALSO\n";
    for (std::size_t i = 0; i < names.size(); ++i) {
        text += ".BR " + escaped(names[i]) + " (1)" + (i + 1 < names.size() ? ",\n" : "\n");
    }
    return text;
}

/// Blank lines are requests of their own in roff, and lint complains of them.
std::string withoutBlankLines(const std::string& page) {
    std::istringstream lines(page);
    std::string result;
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty()) {
            result += line + "\n";
        }
    }
    return result;
}

} // namespace

std::string programPage(const CommandText& program, const ManualInfo& info) {
    std::string commands = ".SH COMMANDS\n";
    for (const CommandText& command : program.commands) {
        commands += ".TP\n" + bold(command.name) + "\n" + escaped(command.description) + ".\nSee\n.BR " +
                    escaped(pageName(program, command)) + " (1).\n";
    }
    return withoutBlankLines(title(program.name, info) + nameSection(program.name, program.description) +
                             synopsisSection(program, program.name) + ".SH DESCRIPTION\n" +
                             escaped(program.description) + "\n" + paragraphs(program) + commands +
                             optionsSection(program) + headedSections(program) + seeAlso(program, program.name));
}

std::string commandPage(const CommandText& program, const CommandText& command, const ManualInfo& info) {
    const std::string name = pageName(program, command);
    return withoutBlankLines(title(name, info) + nameSection(name, command.description) +
                             synopsisSection(command, program.name + " " + command.name) + ".SH DESCRIPTION\n" +
                             escaped(command.description) + ".\n" + paragraphs(command) + optionsSection(command) +
                             headedSections(command) + seeAlso(program, name));
}

} // namespace zqx::app
