// Identifies the file behind a name, to recognise two names of the same file.
#pragma once

#include <compare>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <set>
#include <string>

namespace zqx::tools {

/// What identifies a file within the system.
struct FileIdentity {
    std::uint64_t volume;
    std::uint64_t number;

    auto operator<=>(const FileIdentity&) const = default;
};

/// The identity of a file, after following symbolic links; nothing if there is no such file.
std::optional<FileIdentity> identify(const std::filesystem::path& path);

/// The absolute name without symbolic links, "." and "..". The file need not exist.
std::string canonicalName(const std::string& name);

/// The name in lower case. Names that differ in case only denote the same file on many memory cards and disks, where
/// the second picture would silently replace the first.
std::string foldCase(std::string name);

/// A set of files, which may be looked up by any of their names.
class FileSet {
public:
    void insert(const std::string& name);
    bool contains(const std::string& name) const;

private:
    std::set<FileIdentity> mFiles;
    std::set<std::string> mMissing; // canonical names of files that do not exist
};

} // namespace zqx::tools
