// The command line as text, apart from any layout: what help on the terminal, manual pages and completions are made of.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace CLI {
class App;
class FormatterBase;
} // namespace CLI

namespace zqx::app {

/// One option or positional argument.
struct OptionText {
    std::vector<std::string> names;   ///< "-o", "--output"; of a positional its name alone
    std::string value;                ///< what is to be given, "FILE"; empty for a switch
    std::vector<std::string> choices; ///< the words that may be given, where there is a fixed list
    std::string description;
    std::string defaultValue; ///< empty where there is none worth telling
    std::string group;
    bool positional;
    bool required;
    bool repeated; ///< may be given several times, or be followed by several values
    bool list;     ///< one mention takes several values
};

/// A part of the text that follows the options.
struct SectionText {
    std::string heading; ///< empty for plain paragraphs
    std::string text;
    bool literal; ///< lines are to stay as they are
};

/// One command, or the program itself.
struct CommandText {
    std::string name; ///< "apply"; "zqx-img" for the program
    std::string description;
    std::vector<OptionText> options; ///< positionals first, then as they were added
    std::vector<SectionText> sections;
    std::vector<CommandText> commands;
};

/// Reads a command line object. What follows the options is taken apart by blank lines: a first line that ends with a
/// colon is a heading, indented lines below it stay as they are, everything else is a paragraph.
CommandText describe(const CLI::App& app);

/// "zqx-img apply [OPTIONS] INPUT..."
std::string usageOf(const CommandText& command, const std::string& prefix);

/// "-o, --output FILE"
std::string synopsisOf(const OptionText& option);

/// The program's way of laying out --help: 100 columns, options in two columns.
std::shared_ptr<CLI::FormatterBase> makeHelpFormatter();

} // namespace zqx::app
