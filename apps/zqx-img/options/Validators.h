// Checks of option values, with messages that say what is wrong and what is allowed.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace zqx::app {

/// A whole number in a range, both ends included.
CLI::Validator wholeNumber(std::uint32_t least, std::uint32_t most);

/// A finite number of seconds in a range, both ends included.
CLI::Validator seconds(double least, double most);

/// One of a few words, which help and completions list.
CLI::Validator requireOneOf(const std::vector<std::string>& words);

} // namespace zqx::app
