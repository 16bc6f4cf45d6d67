// Folder entries are sorted, so that a run does the same on every machine.
#include <zqx/tools/InputList.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <numeric>
#include <string_view>
#include <system_error>
#include <utility>

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/files/FileNames.h"
#include "zqx/tools/batch/FileIdentity.h"

namespace zqx::tools {

using namespace pictures;

namespace fs = std::filesystem;

namespace {

bool isHidden(const fs::path& path) {
    return toName(path.filename()).starts_with('.');
}

/// In lower case and without its dot; empty when there is none.
std::string lowerCaseExtension(const fs::path& path) {
    const std::string extension = toName(path.extension());
    return extension.empty() ? extension : foldCase(extension.substr(1));
}

bool isReadable(const std::string& extension) {
    return canRead(formatOfName("." + extension));
}

/// Whether an extension is that of a picture format, even one that this build cannot read. Such files are reported,
/// since their owner would otherwise miss them without noticing.
bool isKnownPicture(std::string_view extension) {
    static constexpr std::array<std::string_view, 41> EXTENSIONS = {
        "avci",  "avcs", "avif",  "avifs", "bpg",  "cin", "cr3", "dpx", "exr", "fit",  "fits", "flif", "gpr", "heic",
        "heics", "heif", "heifs", "hif",   "icns", "j2c", "jls", "jp2", "jpf", "jph",  "jpm",  "jpx",  "jxl", "jxr",
        "kra",   "mef",  "ora",   "psb",   "psd",  "qoi", "raw", "sgi", "svg", "svgz", "webp", "wp2",  "xcf"};
    return std::ranges::binary_search(EXTENSIONS, extension);
}

class FolderReader {
public:
    FolderReader(InputList& list, bool recursive, const std::string& excluded)
        : mList(list), mRecursive(recursive), mExcluded(toPath(excluded)) {}

    // NOLINTNEXTLINE(misc-no-recursion): as deep as the folders are nested
    void read(const fs::path& folder, const fs::path& below) {
        for (const fs::path& path : sortedEntries(folder)) {
            std::error_code failure;
            if (fs::is_regular_file(path, failure)) {
                take(path, below);
            } else if (mRecursive && isOwnFolder(path)) {
                read(path, below / path.filename());
            }
        }
    }

private:
    void take(const fs::path& path, const fs::path& below) {
        const std::string extension = lowerCaseExtension(path);
        if (extension.empty()) {
            return;
        }
        if (isReadable(extension)) {
            mList.inputs.push_back({toName(path), toName(below)});
        } else if (isKnownPicture(extension)) {
            ++mList.unreadable[extension];
        }
    }

    std::vector<fs::path> sortedEntries(const fs::path& folder) {
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
                {toName(folder), "cannot be read (" + failure.message() + "); check its permissions"});
        }
        std::ranges::sort(entries);
        return entries;
    }

    /// A symbolic link may lead to a parent folder and cause endless recursion.
    bool isOwnFolder(const fs::path& path) const {
        std::error_code failure;
        return fs::is_directory(fs::symlink_status(path, failure)) && !fs::equivalent(path, mExcluded, failure);
    }

    InputList& mList;
    bool mRecursive;
    fs::path mExcluded;
};

std::size_t total(const ExtensionCounts& counts) {
    return std::accumulate(counts.begin(), counts.end(), std::size_t{0},
                           [](std::size_t sum, const auto& count) { return sum + count.second; });
}

/// Why a folder yields no pictures.
std::string describeEmptyFolder(bool hasUnreadable, bool recursive) {
    const std::string reason = hasUnreadable ? "contains no pictures that this build can read" : "contains no pictures";
    return recursive ? reason : reason + "; use --recursive to include its subfolders";
}

} // namespace

InputList listInputs(const std::vector<std::string>& names, bool recursive, const std::string& excluded) {
    InputList list;
    for (const std::string& name : names) {
        std::error_code failure;
        const fs::file_status status = fs::status(toPath(name), failure);
        if (status.type() == fs::file_type::not_found) {
            list.failures.push_back({name, "there is no such file; check the name"});
        } else if (!fs::is_directory(status)) {
            list.inputs.push_back({name, ""});
        } else {
            const std::size_t before = list.inputs.size() + list.failures.size();
            const std::size_t unreadableBefore = total(list.unreadable);
            FolderReader(list, recursive, excluded).read(toPath(name), {});
            if (list.inputs.size() + list.failures.size() == before) {
                const bool hasUnreadable = total(list.unreadable) > unreadableBefore;
                list.failures.push_back({name, describeEmptyFolder(hasUnreadable, recursive)});
            }
        }
    }
    return list;
}

std::string describeUnreadable(const ExtensionCounts& unreadable) {
    if (unreadable.empty()) {
        return {};
    }
    std::vector<std::pair<std::string, std::size_t>> counts(unreadable.begin(), unreadable.end());
    std::ranges::stable_sort(counts, std::ranges::greater(), &std::pair<std::string, std::size_t>::second);
    const std::size_t files = total(unreadable);
    std::string text = "skipped " + std::to_string(files) + (files == 1 ? " file in a format" : " files in formats") +
                       " this build cannot read";
    const char* separator = ": ";
    for (const auto& [extension, count] : counts) {
        text += separator + std::to_string(count) + " ." + extension;
        separator = ", ";
    }
    return text;
}

} // namespace zqx::tools
