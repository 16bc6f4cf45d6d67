// The similarity of names, for "did you mean" suggestions.
#pragma once

#include <cstddef>
#include <string_view>

namespace zqx::tools {

/// The least number of insertions, deletions and replacements of characters that turns one name into the other,
/// ignoring case.
std::size_t editDistance(std::string_view a, std::string_view b);

} // namespace zqx::tools
