// "Did you mean" suggestions for misspelt names.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace zqx::app {

/// The most similar name, ignoring case: one that differs in a few characters, or one of which the word is an
/// abbreviation or extension. Nothing if no name is similar enough.
std::optional<std::string> nearestName(std::string_view word, std::span<const std::string> names);

/// A suggestion such as "; did you mean "histogram"?", or nothing if no name is similar enough.
std::string didYouMean(std::string_view word, std::span<const std::string> names);

} // namespace zqx::app
