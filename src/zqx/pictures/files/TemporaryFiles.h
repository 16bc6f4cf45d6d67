// The files that this process is writing, so that a program which is told to end can remove them first.
#pragma once

#include <chrono>
#include <mutex>
#include <set>
#include <string>

namespace zqx::pictures {

/// The files that may not outlive the process. What makes, renames or removes one holds this for all of it, so that
/// removeAll() comes before or after, never between.
class TemporaryFiles {
public:
    TemporaryFiles();
    TemporaryFiles(const TemporaryFiles&) = delete;
    TemporaryFiles& operator=(const TemporaryFiles&) = delete;
    ~TemporaryFiles() = default;

    void add(const std::string& name);
    void forget(const std::string& name);

    /// For a program that ends while its threads go on: removes all files, and nobody makes one or puts one in place
    /// from then on; threads that try wait until the process is gone. May be called from any thread, but not from a
    /// signal handler.
    /// @return false where nothing was removed, because somebody held the files for longer than the patience
    static bool removeAll(std::chrono::milliseconds patience);

private:
    std::unique_lock<std::mutex> mLock;
    std::set<std::string>& mNames;
};

/// A name for a temporary file in a folder, which is very likely to be free: ".zqx-img-Ab3dE6.tmp".
std::string makeTemporaryName(const std::string& folder);

/// Removes the temporary files that killed processes left in a folder; at most once for each folder. They are told from
/// those in use by their age, more than a day, and by a lock that ends with the process that held it. Where the file
/// system has no locks nothing is removed.
void removeStaleTemporaries(const std::string& folder);

} // namespace zqx::pictures
