// std::filesystem takes strings of char8_t as UTF-8 on every system.
#include "zqx/pictures/files/FileNames.h"

namespace zqx::pictures {

namespace fs = std::filesystem;

fs::path toPath(const std::string& name) {
    return {std::u8string(name.begin(), name.end())};
}

std::string toName(const fs::path& path) {
    const std::u8string name = path.u8string();
    return {name.begin(), name.end()};
}

std::string getFolder(const std::string& name) {
    const fs::path parent = toPath(name).parent_path();
    return parent.empty() ? "." : toName(parent);
}

} // namespace zqx::pictures
