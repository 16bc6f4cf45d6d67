// The portable part of file identities.
#include "zqx/tools/batch/FileIdentity.h"

#include <algorithm>
#include <cctype>
#include <system_error>

#include "zqx/pictures/files/FileNames.h"

namespace zqx::tools {

using namespace pictures;

namespace fs = std::filesystem;

std::string canonicalName(const std::string& name) {
    std::error_code failure;
    const fs::path absolute = fs::absolute(toPath(name), failure);
    const fs::path path = failure ? toPath(name) : fs::weakly_canonical(absolute, failure);
    return failure ? name : toName(path);
}

std::string foldCase(std::string name) {
    std::ranges::transform(name, name.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return name;
}

void FileSet::insert(const std::string& name) {
    if (const std::optional<FileIdentity> file = identify(toPath(name))) {
        mFiles.insert(*file);
    } else {
        mMissing.insert(canonicalName(name));
    }
}

bool FileSet::contains(const std::string& name) const {
    const std::optional<FileIdentity> file = identify(toPath(name));
    return file ? mFiles.contains(*file) : mMissing.contains(canonicalName(name));
}

} // namespace zqx::tools
