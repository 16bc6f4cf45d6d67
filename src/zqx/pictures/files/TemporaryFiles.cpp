// There is one registry per process. It is never destroyed, since a signal may arrive while the process is exiting.
#include "zqx/pictures/files/TemporaryFiles.h"

#include <algorithm>
#include <filesystem>
#include <random>
#include <string_view>
#include <system_error>

#include "zqx/pictures/files/FileNames.h"
#include "zqx/pictures/files/FileSystem.h"
#include "zqx/pictures/files/LockWithin.h"

namespace zqx::pictures {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view BEGIN = ".zqx-img-";
constexpr std::string_view END = ".tmp";
constexpr std::size_t LETTERS = 6;
constexpr std::string_view ALPHABET = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

struct Registry {
    std::mutex mutex;
    std::set<std::string> names;
};

Registry& registry() {
    static Registry& only = *new Registry;
    return only;
}

bool isTemporaryName(std::string_view name) {
    if (name.size() != BEGIN.size() + LETTERS + END.size() || !name.starts_with(BEGIN) || !name.ends_with(END)) {
        return false;
    }
    return name.substr(BEGIN.size(), LETTERS).find_first_not_of(ALPHABET) == std::string_view::npos;
}

/// Whether this is the first call for a folder.
bool isFirstVisit(const std::string& folder) {
    static std::mutex mutex;
    static std::set<std::string>& visited = *new std::set<std::string>;
    const std::lock_guard lock(mutex);
    return visited.insert(folder).second;
}

} // namespace

TemporaryFiles::TemporaryFiles() : mLock(registry().mutex), mNames(registry().names) {
}

void TemporaryFiles::add(const std::string& name) {
    mNames.insert(name);
}

void TemporaryFiles::forget(const std::string& name) {
    mNames.erase(name);
}

bool TemporaryFiles::removeAll(std::chrono::milliseconds patience) {
    std::unique_lock lock = lockWithin(registry().mutex, patience);
    if (!lock) {
        return false;
    }
    std::ranges::for_each(registry().names, removeFile);
    lock.release(); // and never unlocked
    return true;
}

std::string makeTemporaryName(const std::string& folder) {
    std::random_device random;
    std::uniform_int_distribution<std::size_t> place(0, ALPHABET.size() - 1);
    std::string name = folder + "/";
    name += BEGIN;
    for (std::size_t i = 0; i < LETTERS; ++i) {
        name += ALPHABET[place(random)];
    }
    return name.append(END);
}

void removeStaleTemporaries(const std::string& folder) {
    constexpr std::chrono::hours AGE(24); // on network shares the locks of other machines may be invisible
    if (!isFirstVisit(folder)) {
        return;
    }
    std::error_code failure;
    fs::directory_iterator entry(toPath(folder), failure);
    for (; !failure && entry != fs::directory_iterator(); entry.increment(failure)) {
        if (isTemporaryName(toName(entry->path().filename()))) {
            removeIfAbandoned(toName(entry->path()), AGE);
        }
    }
}

} // namespace zqx::pictures
