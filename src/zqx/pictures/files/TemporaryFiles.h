// The temporary files of this process, so that a program that is asked to end can remove them first.
#pragma once

#include <chrono>
#include <mutex>
#include <set>
#include <string>

namespace zqx::pictures {

/// Exclusive access to the list of temporary files. Whoever creates, renames or removes one holds such an object for
/// the whole operation, so that removeAll() comes before or after it, never in between.
class TemporaryFiles {
public:
    TemporaryFiles();
    TemporaryFiles(const TemporaryFiles&) = delete;
    TemporaryFiles& operator=(const TemporaryFiles&) = delete;
    ~TemporaryFiles() = default;

    void add(const std::string& name);
    void forget(const std::string& name);

    /// For a program that ends while other threads are still running: removes all temporary files and blocks all
    /// further operations on temporary files until the process is gone. May be called by any thread, but not by a
    /// signal handler.
    /// @return false if nothing was removed, because the list was in use for longer than the patience
    static bool removeAll(std::chrono::milliseconds patience);

private:
    std::unique_lock<std::mutex> mLock;
    std::set<std::string>& mNames;
};

/// A random name for a temporary file in a folder, such as ".zqx-img-Ab3dE6.tmp".
std::string makeTemporaryName(const std::string& folder);

/// Removes the temporary files that killed processes left in a folder; at most once for each folder. They are
/// distinguished from files in use by their age, more than a day, and by a lock, which ends with the process that holds
/// it. On file systems without locks nothing is removed.
void removeStaleTemporaries(const std::string& folder);

} // namespace zqx::pictures
