// Amounts as users read and write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zqx::text {

/// Bytes: "1500000", "64K", "4g", with K, M, G and T as powers of 1024. Nothing for anything else, and for more than 64
/// bits hold.
std::optional<std::uint64_t> parseSize(std::string_view text);
/// The same for a number of things: the letters are powers of 1000.
std::optional<std::uint64_t> parseCount(std::string_view text);

/// "4 GiB", or "1500 bytes" where no unit divides it.
std::string exactSize(std::uint64_t bytes);
/// In the largest unit that the amount fills, rounded: "1.5 GiB".
std::string roundedSize(std::uint64_t bytes);

} // namespace zqx::text
