// On POSIX systems, files are identified by device and inode.
#include "zqx/tools/batch/FileIdentity.h"

#include <sys/stat.h>

namespace zqx::tools {

std::optional<FileIdentity> identify(const std::filesystem::path& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return std::nullopt;
    }
    return FileIdentity{static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino)};
}

} // namespace zqx::tools
