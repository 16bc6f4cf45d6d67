// A name is suggested if no more than a third of its characters differ, which still distinguishes the names of this
// program.
#include "help/Suggestions.h"

#include <algorithm>
#include <limits>

#include "zqx/tools/parameters/Spelling.h"

namespace zqx::app {

using tools::editDistance;

namespace {

/// The number of characters after the leading dashes, which all options have.
std::size_t letters(std::string_view name) {
    return name.size() - std::min(name.find_first_not_of('-'), name.size());
}

/// Users type abbreviations and longer forms of names: "hist" and "--output-directory" are not misspellings.
bool isAbbreviation(std::string_view brief, std::string_view name) {
    constexpr std::size_t SHORTEST = 3;
    return letters(brief) >= SHORTEST && brief.size() < name.size() &&
           editDistance(brief, name.substr(0, brief.size())) == 0;
}

} // namespace

std::optional<std::string> nearestName(std::string_view word, std::span<const std::string> names) {
    if (names.empty()) {
        return std::nullopt;
    }
    const std::string& nearest =
        *std::ranges::min_element(names, {}, [&](const std::string& name) { return editDistance(word, name); });
    if (editDistance(word, nearest) <= std::max(letters(word), letters(nearest)) / 3) {
        return nearest;
    }
    const auto distance = [&](const std::string& name) {
        return isAbbreviation(word, name) || isAbbreviation(name, word) ? editDistance(word, name)
                                                                        : std::numeric_limits<std::size_t>::max();
    };
    const std::string& begun = *std::ranges::min_element(names, {}, distance);
    return distance(begun) < std::numeric_limits<std::size_t>::max() ? std::optional(begun) : std::nullopt;
}

std::string didYouMean(std::string_view word, std::span<const std::string> names) {
    const std::optional<std::string> nearest = nearestName(word, names);
    return nearest ? "; did you mean \"" + *nearest + "\"?" : "";
}

} // namespace zqx::app
