/// @file
/// What a picture file may ask for before it is refused.
#pragma once

#include <cstdint>

#include <zqx/pictures/Export.h>

namespace zqx::pictures {

/// The largest pictures and files that are read. A header may claim any size; what it claims is checked before memory
/// is asked for, and what was decoded is checked again.
/// @ingroup pictures
struct Limits {
    std::uint64_t width = 65500;                   ///< pixels in a row, by default as many as JPEG's usual codec takes
    std::uint64_t height = 65500;                  ///< rows
    std::uint64_t pixels = 500'000'000;            ///< width times height
    std::uint64_t bytes = std::uint64_t{4} << 30U; ///< of the file
};

} // namespace zqx::pictures
