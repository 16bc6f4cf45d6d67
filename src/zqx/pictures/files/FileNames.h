// File names are UTF-8 throughout; paths are what the system makes of them.
#pragma once

#include <filesystem>
#include <string>

#include "zqx/pictures/Export.h"

namespace zqx::pictures {

/// The path of a UTF-8 file name, on every system.
ZQX_PICTURES_EXPORT std::filesystem::path toPath(const std::string& name);

/// The UTF-8 name of a path, on every system. Where names are bytes, these are kept, also those that are not UTF-8.
ZQX_PICTURES_EXPORT std::string toName(const std::filesystem::path& path);

/// The folder that a file is in, "." for a name without one.
std::string folderOf(const std::string& name);

} // namespace zqx::pictures
