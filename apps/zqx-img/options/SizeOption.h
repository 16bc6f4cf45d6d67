// Options whose value is a size in bytes, with K, M, G and T as powers of 1024, or a count, with powers of 1000.
#pragma once

#include <cstdint>
#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace zqx::app {

/// Adds an option for a number of bytes above zero, with an error message for invalid values.
/// @param shownDefault for the help
CLI::Option* addSizeOption(CLI::App& command, const std::string& name, std::uint64_t& bytes,
                           const std::string& shownDefault, const std::string& description);
/// Adds an option for a count above zero.
CLI::Option* addCountOption(CLI::App& command, const std::string& name, std::uint64_t& count,
                            const std::string& shownDefault, const std::string& description);

} // namespace zqx::app
