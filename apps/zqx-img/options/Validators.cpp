// Numbers are parsed here before the command line library converts them, which would accept infinities and trailing
// text.
#include "options/Validators.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "help/Suggestions.h"
#include "zqx/text/Numbers.h"

namespace zqx::app {

namespace {

/// Parses the whole text as a number, independently of the locale.
template <typename Number>
std::optional<Number> parseNumber(std::string_view text) {
    Number number{};
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    return failure == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

std::string joined(const std::vector<std::string>& words, const std::string& separator) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : separator) + word;
    }
    return text;
}

} // namespace

CLI::Validator wholeNumber(std::uint32_t least, std::uint32_t most) {
    return {[=](const std::string& text) -> std::string {
                const std::optional<std::uint32_t> number = parseNumber<std::uint32_t>(text);
                return number && *number >= least && *number <= most
                           ? ""
                           : quoted(text) + " is not a whole number from " + std::to_string(least) + " to " +
                                 std::to_string(most);
            },
            ""};
}

CLI::Validator seconds(double least, double most) {
    const std::string range = text::significant(least) + " to " + text::fixed(most, 0);
    return {[=](const std::string& text) -> std::string {
                const std::optional<double> number = parseNumber<double>(text);
                const bool allowed = number && *number >= least && *number <= most; // no comparison is true of NaN
                return allowed ? "" : quoted(text) + " is not a number of seconds from " + range;
            },
            ""};
}

CLI::Validator requireOneOf(const std::vector<std::string>& words) {
    return {[=](const std::string& text) -> std::string {
                return std::ranges::find(words, text) != words.end()
                           ? ""
                           : quoted(text) + " is not one of " + joined(words, ", ") + didYouMean(text, words);
            },
            "{" + joined(words, ",") + "}"};
}

} // namespace zqx::app
