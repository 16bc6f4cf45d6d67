// What a picture file may ask for before it is refused.
#pragma once

#include <cstdint>
#include <string>

#include "zqx/pictures/bytes/PictureSize.h"

namespace zqx::pictures {

/// The largest that is read. Each has an option that raises it, which the refusal names.
struct Limits {
    std::uint64_t width = 65500; // as JPEG's usual codec
    std::uint64_t height = 65500;
    std::uint64_t pixels = 500'000'000;
    std::uint64_t bytes = std::uint64_t{4} << 30U; ///< of the file
};

/// @throws Error naming the file and the option
void checkFileSize(const std::string& name, std::uint64_t bytes, const Limits& limits);
void checkPictureSize(const std::string& name, const PictureSize& size, const Limits& limits);

} // namespace zqx::pictures
