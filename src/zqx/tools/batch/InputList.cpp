// Folders are read whole and sorted, so that a run does the same on every machine.
#include "zqx/tools/batch/InputList.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/files/InputFile.h"
#include "zqx/pictures/files/OutputFile.h"

namespace zqx::tools {

using namespace pictures;

namespace fs = std::filesystem;

namespace {

bool isHidden(const fs::path& path) {
    return toName(path.filename()).starts_with('.');
}

bool hasReadableExtension(const fs::path& path) {
    if (!path.has_extension()) {
        return false;
    }
    return canRead(formatOfName(toName(path.extension())));
}

class FolderReader {
public:
    FolderReader(InputList& list, bool recursive, const std::string& excluded)
        : mList(list), mRecursive(recursive), mExcluded(toPath(excluded)) {}

    // NOLINTNEXTLINE(misc-no-recursion): as deep as the folders are
    void read(const fs::path& folder, const fs::path& below) {
        for (const fs::path& path : entriesOf(folder)) {
            std::error_code failure;
            if (fs::is_regular_file(path, failure)) {
                if (hasReadableExtension(path)) {
                    mList.inputs.push_back({toName(path), toName(below)});
                }
            } else if (mRecursive && isOwnFolder(path)) {
                read(path, below / path.filename());
            }
        }
    }

private:
    std::vector<fs::path> entriesOf(const fs::path& folder) {
        std::vector<fs::path> entries;
        std::error_code failure;
        fs::directory_iterator entry(folder, failure);
        for (; !failure && entry != fs::directory_iterator(); entry.increment(failure)) {
            if (!isHidden(entry->path())) {
                entries.push_back(entry->path());
            }
        }
        if (failure) {
            mList.failures.push_back(
                {toName(folder), "cannot be read (" + failure.message() + "), check its permissions"});
        }
        std::ranges::sort(entries);
        return entries;
    }

    /// A link may lead back up, and then there is no end.
    bool isOwnFolder(const fs::path& path) const {
        std::error_code failure;
        return fs::is_directory(fs::symlink_status(path, failure)) && !fs::equivalent(path, mExcluded, failure);
    }

    InputList& mList;
    bool mRecursive;
    fs::path mExcluded;
};

} // namespace

InputList listInputs(const std::vector<std::string>& names, bool recursive, const std::string& excluded) {
    InputList list;
    for (const std::string& name : names) {
        std::error_code failure;
        const fs::file_status status = fs::status(toPath(name), failure);
        if (status.type() == fs::file_type::not_found) {
            list.failures.push_back({name, "there is no such file, check the name"});
        } else if (!fs::is_directory(status)) {
            list.inputs.push_back({name, ""});
        } else {
            const std::size_t before = list.inputs.size() + list.failures.size();
            FolderReader(list, recursive, excluded).read(toPath(name), {});
            if (list.inputs.size() + list.failures.size() == before) {
                list.failures.push_back({name, recursive
                                                   ? "holds no pictures"
                                                   : "holds no pictures, --recursive looks into its folders, too"});
            }
        }
    }
    return list;
}

} // namespace zqx::tools
