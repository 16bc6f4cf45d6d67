// Sizes and counts in the notation of users.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zqx::text {

/// Parses a number of bytes such as "1500000", "64K" or "4g", with K, M, G and T as powers of 1024. Nothing if the text
/// is invalid or the number has more than 64 bits.
std::optional<std::uint64_t> parseSize(std::string_view text);
/// Parses a count in the same notation, with K, M, G and T as powers of 1000.
std::optional<std::uint64_t> parseCount(std::string_view text);

/// A size without rounding: "4 GiB", or "1500 bytes" if no unit divides it.
std::string exactSize(std::uint64_t bytes);
/// A size rounded in the largest suitable unit: "1.5 GiB".
std::string roundedSize(std::uint64_t bytes);

} // namespace zqx::text
