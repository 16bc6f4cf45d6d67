// "Did you mean": the known name that a misspelt one is nearest to.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zqx::app {

/// The nearest of the names, whatever the case: one that differs in a few characters, or of which the word is the
/// beginning. Nothing where none is near enough to be meant.
std::optional<std::string> nearestName(std::string_view word, std::span<const std::string> names);

/// "; did you mean "histogram"?", or nothing where no name is near enough.
std::string didYouMean(std::string_view word, std::span<const std::string> names);

} // namespace zqx::app
