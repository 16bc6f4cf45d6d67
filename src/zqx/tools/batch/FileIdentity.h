// Which file a name leads to, so that two names can be told to be one file.
#pragma once

#include <compare>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>

namespace zqx::tools {

/// What the system tells files apart by.
struct FileIdentity {
    std::uint64_t volume;
    std::uint64_t number;

    auto operator<=>(const FileIdentity&) const = default;
};

/// The file at the end of all links; nothing where there is none.
std::optional<FileIdentity> identify(const std::filesystem::path& path);

/// The absolute name without links and detours, whether there is such a file yet or not.
std::string canonicalName(const std::string& name);

/// Names that differ in case alone are one file on many memory cards and disks, where the second picture would replace
/// the first without a word.
std::string foldCase(std::string name);

/// Files by any of their names.
class FileSet {
public:
    void insert(const std::string& name);
    bool contains(const std::string& name) const;

private:
    std::set<FileIdentity> mFiles;
    std::set<std::string> mMissing; // canonical names of those that are not there
};

} // namespace zqx::tools
