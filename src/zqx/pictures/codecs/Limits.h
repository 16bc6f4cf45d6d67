// Enforcement of the size limits.
#pragma once

#include <cstdint>
#include <string>

#include "zqx/pictures/Export.h"
#include "zqx/pictures/Limits.h"

namespace zqx::pictures {

/// @throws Error naming the file and the option that raises the limit
void checkFileSize(const std::string& name, std::uint64_t bytes, const Limits& limits);
ZQX_PICTURES_EXPORT void checkPictureSize(const std::string& name, std::uint64_t width, std::uint64_t height,
                                          const Limits& limits);

} // namespace zqx::pictures
