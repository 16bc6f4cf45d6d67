// Sizes on their way to FreeImage, which counts in int.
#pragma once

#include <cstddef>
#include <limits>
#include <optional>

namespace zqx::img {

/// The number as FreeImage takes it; nothing where it would become another one.
inline std::optional<int> toBitmapSize(std::size_t size) {
    if (size > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return std::nullopt;
    }
    return static_cast<int>(size);
}

} // namespace zqx::img
