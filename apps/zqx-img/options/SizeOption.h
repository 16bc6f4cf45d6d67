// Options whose value is an amount: of bytes with K, M, G, T as powers of 1024, or of things as powers of 1000.
#pragma once

#include <cstdint>
#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace zqx::app {

/// Adds an option for a number of bytes above zero, which says what it takes where a value is no such number.
/// @param shownDefault for the help
CLI::Option* addSizeOption(CLI::App& command, const std::string& name, std::uint64_t& bytes,
                           const std::string& shownDefault, const std::string& description);
/// The same for a number of things.
CLI::Option* addCountOption(CLI::App& command, const std::string& name, std::uint64_t& count,
                            const std::string& shownDefault, const std::string& description);

} // namespace zqx::app
