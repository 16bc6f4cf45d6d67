// The command line as text without layout: the source of help, manual pages and completions.
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
    std::vector<std::string> names;   ///< "-o", "--output"; or the name of a positional argument
    std::string value;                ///< placeholder for the value, "FILE"; empty for a switch
    std::vector<std::string> choices; ///< the accepted words, if there is a fixed list
    std::string description;
    std::string defaultValue; ///< empty for none
    std::string group;
    bool positional;
    bool required;
    bool repeated; ///< may be given several times, or with several values
    bool list;     ///< takes several values at once
};

/// A section of the text after the options.
struct SectionText {
    std::string heading; ///< empty for plain paragraphs
    std::string text;
    bool literal; ///< line breaks are kept
};

/// One command, or the program itself.
struct CommandText {
    std::string name; ///< "apply"; "zqx-img" for the program
    std::string description;
    std::vector<OptionText> options; ///< positional arguments first, otherwise in the order of addition
    std::vector<SectionText> sections;
    std::vector<CommandText> commands;
};

/// Describes a command line object. The text after the options is split at blank lines: a first line that ends with a
/// colon is a heading, indented lines below it are literal, everything else is a paragraph.
CommandText describe(const CLI::App& app);

/// "zqx-img apply [OPTIONS] INPUT..."
std::string formatUsage(const CommandText& command, const std::string& prefix);

/// "-o, --output FILE"
std::string formatSynopsis(const OptionText& option);

/// The layout of --help: lines of 100 characters, options in two columns.
std::shared_ptr<CLI::FormatterBase> makeHelpFormatter();

} // namespace zqx::app
