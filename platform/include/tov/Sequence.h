/// @file
/// A counted array that crosses interfaces.
#pragma once

#include <cstdint>

namespace tov {

/// A plain record that owns nothing by itself. Elements handed out to a caller come from tovCalloc and are freed by
/// the caller with tovFree; elements passed in stay the caller's.
template <typename T>
struct Sequence {
    std::uint32_t count; ///< elements
    T* data;             ///< the first of them
};

} // namespace tov
