// How near a misspelt name is to a known one, for "did you mean".
#pragma once

#include <cstddef>
#include <string_view>

namespace zqx::tools {

/// The least number of characters to insert, remove or replace that turns one name into the other, whatever the case.
std::size_t editDistance(std::string_view a, std::string_view b);

} // namespace zqx::tools
