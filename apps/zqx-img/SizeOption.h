// Options whose value is an amount: of bytes with K, M, G, T as powers of 1024, or of things as powers of 1000.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace zqx::img::app {

/// Bytes: "1500000", "64K", "4g". Nothing for anything else, and for more than 64 bits hold.
std::optional<std::uint64_t> parseSize(std::string_view text);
/// Like parseSize, but the letters are powers of 1000.
std::optional<std::uint64_t> parseCount(std::string_view text);

/// "4 GiB", or "1500 bytes" where no unit divides it.
std::string exactSize(std::uint64_t bytes);

/// Adds an option for a number of bytes above zero, which says what it takes where a value is no such number.
/// @param shownDefault for the help
CLI::Option* addSizeOption(CLI::App& command, const std::string& name, std::uint64_t& bytes,
                           const std::string& shownDefault, const std::string& description);
/// The same for a number of things.
CLI::Option* addCountOption(CLI::App& command, const std::string& name, std::uint64_t& count,
                            const std::string& shownDefault, const std::string& description);

} // namespace zqx::img::app
