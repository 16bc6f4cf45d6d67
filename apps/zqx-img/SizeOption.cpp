// Amounts as users write them.
#include "SizeOption.h"

#include <charconv>
#include <limits>
#include <system_error>

#include <CLI/CLI.hpp>

namespace zqx::img::app {

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

using Parser = std::optional<std::uint64_t> (*)(std::string_view);

CLI::Option* addAmountOption(CLI::App& command, const std::string& name, std::uint64_t& amount,
                             const std::string& shownDefault, const std::string& description, Parser parse,
                             const std::string& wanted) {
    const auto take = [name, &amount, parse, wanted](const std::string& text) {
        const std::optional<std::uint64_t> parsed = parse(text);
        if (!parsed || *parsed == 0) {
            throw CLI::ValidationError(name, "\"" + text + "\" is not " + wanted);
        }
        amount = *parsed;
    };
    return command.add_option_function<std::string>(name, take, description)->default_str(shownDefault);
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

CLI::Option* addSizeOption(CLI::App& command, const std::string& name, std::uint64_t& bytes,
                           const std::string& shownDefault, const std::string& description) {
    return addAmountOption(command, name, bytes, shownDefault, description, parseSize,
                           "a number of bytes, such as 500M or 4G")
        ->type_name("SIZE");
}

CLI::Option* addCountOption(CLI::App& command, const std::string& name, std::uint64_t& count,
                            const std::string& shownDefault, const std::string& description) {
    return addAmountOption(command, name, count, shownDefault, description, parseCount,
                           "a number above zero, such as 20000 or 500M")
        ->type_name("N");
}

} // namespace zqx::img::app
