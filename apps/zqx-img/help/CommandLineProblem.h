// Command lines that cannot be parsed, explained.
#pragma once

#include <span>
#include <string>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace zqx::app {

/// What is wrong with a command line and, where that can be guessed, what was meant: a line for the user, and one that
/// says where to read more.
/// @param program after it failed to parse the words
/// @param words of the command line, the program's name first
std::string describeProblem(const CLI::App& program, const CLI::ParseError& error, std::span<const char* const> words);

} // namespace zqx::app
