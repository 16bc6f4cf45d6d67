// Explains command lines that cannot be parsed.
#pragma once

#include <span>
#include <string>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace zqx::app {

/// What is wrong with a command line and, if that can be guessed, what was meant, followed by a line that says where to
/// read more.
/// @param program after it failed to parse the command line
/// @param words of the command line, beginning with the name of the program
std::string describeProblem(const CLI::App& program, const CLI::ParseError& error, std::span<const char* const> words);

} // namespace zqx::app
