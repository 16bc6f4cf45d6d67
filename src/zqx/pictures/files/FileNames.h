// File names are UTF-8 throughout; paths have the encoding of the system.
#pragma once

#include <filesystem>
#include <string>

#include "zqx/pictures/Export.h"

namespace zqx::pictures {

/// Converts a UTF-8 file name to a path.
ZQX_PICTURES_EXPORT std::filesystem::path toPath(const std::string& name);

/// Converts a path to a UTF-8 name. On systems where names are bytes, these are kept even if they are not UTF-8.
ZQX_PICTURES_EXPORT std::string toName(const std::filesystem::path& path);

/// The folder of a file; "." if the name has none.
std::string getFolder(const std::string& name);

} // namespace zqx::pictures
