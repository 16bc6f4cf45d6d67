// Parses sizes and counts on the command line.
#include "options/SizeOption.h"

#include <optional>
#include <string_view>

#include <CLI/CLI.hpp>

#include "zqx/text/Amounts.h"

namespace zqx::app {

namespace {

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

CLI::Option* addSizeOption(CLI::App& command, const std::string& name, std::uint64_t& bytes,
                           const std::string& shownDefault, const std::string& description) {
    return addAmountOption(command, name, bytes, shownDefault, description, text::parseSize,
                           "a number of bytes, such as 500M or 4G")
        ->type_name("SIZE");
}

CLI::Option* addCountOption(CLI::App& command, const std::string& name, std::uint64_t& count,
                            const std::string& shownDefault, const std::string& description) {
    return addAmountOption(command, name, count, shownDefault, description, text::parseCount,
                           "a number above zero, such as 20000 or 500M")
        ->type_name("N");
}

} // namespace zqx::app
