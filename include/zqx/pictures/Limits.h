/// @file
/// Limits on the size of the picture files that are read.
#pragma once

#include <cstdint>

#include <zqx/pictures/Export.h>

namespace zqx::pictures {

/// The largest pictures and files that are read. A header may claim any size: the claim is checked before memory is
/// allocated, and the decoded picture is checked again.
/// @ingroup pictures
struct Limits {
    std::uint64_t width = 65500;                   ///< in pixels; the default is the limit of the common JPEG codec
    std::uint64_t height = 65500;                  ///< in pixels
    std::uint64_t pixels = 500'000'000;            ///< width times height
    std::uint64_t bytes = std::uint64_t{4} << 30U; ///< size of the file
};

} // namespace zqx::pictures
