// Parses and formats amounts, independently of the locale.
#include "zqx/text/Amounts.h"

#include <charconv>
#include <limits>
#include <system_error>

#include "zqx/text/Numbers.h"

namespace zqx::text {

namespace {

constexpr std::string_view UNITS = "KMGT";

std::optional<std::uint64_t> parseAmount(std::string_view text, std::uint64_t base) {
    std::uint64_t number = 0;
    const auto [rest, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failure != std::errc()) {
        return std::nullopt;
    }
    const std::string_view unit = text.substr(static_cast<std::size_t>(rest - text.data()));
    if (unit.empty()) {
        return number;
    }
    const char letter = unit.front() >= 'a' ? static_cast<char>(unit.front() - 'a' + 'A') : unit.front();
    const std::size_t power = UNITS.find(letter);
    if (unit.size() > 1 || power == std::string_view::npos) {
        return std::nullopt;
    }
    for (std::size_t i = 0; i <= power; ++i) {
        if (number > std::numeric_limits<std::uint64_t>::max() / base) {
            return std::nullopt;
        }
        number *= base;
    }
    return number;
}

} // namespace

std::optional<std::uint64_t> parseSize(std::string_view text) {
    return parseAmount(text, 1024);
}

std::optional<std::uint64_t> parseCount(std::string_view text) {
    return parseAmount(text, 1000);
}

std::string exactSize(std::uint64_t bytes) {
    std::size_t power = 0;
    std::uint64_t number = bytes;
    for (; power < UNITS.size() && number >= 1024 && number % 1024 == 0; number /= 1024) {
        ++power;
    }
    return std::to_string(number) + (power > 0 ? std::string(" ") + UNITS[power - 1] + "iB" : " bytes");
}

std::string roundedSize(std::uint64_t bytes) {
    static constexpr const char* UNITS[] = {"bytes", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    std::size_t unit = 0;
    auto size = static_cast<double>(bytes);
    for (; size >= 1024.0; size /= 1024.0) {
        ++unit;
    }
    return fixed(size, unit > 0 && size < 10.0 ? 1 : 0) + " " + UNITS[unit];
}

} // namespace zqx::text
