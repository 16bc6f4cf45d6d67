// Atomic output: a temporary file in the target's folder that is renamed over the target at the very end.
#include "zqx/pictures/files/OutputFile.h"

#include <cerrno>
#include <filesystem>
#include <optional>
#include <set>
#include <system_error>
#include <vector>

#include "zqx/pictures/files/TemporaryFiles.h"

namespace zqx::pictures {

namespace fs = std::filesystem;

namespace {

/// Follows symbolic links, also to a file that does not exist yet: writing through a link keeps the link.
std::string resolveLinks(const std::string& name) {
    constexpr int MAX_LINKS = 40; // the limit of Linux
    fs::path path = toPath(name);
    std::error_code failure;
    for (int i = 0; fs::is_symlink(fs::symlink_status(path, failure)); ++i) {
        if (i == MAX_LINKS) {
            throw Error(name, "goes through too many symbolic links");
        }
        const fs::path next = fs::read_symlink(path, failure);
        if (failure) {
            throw Error(name, "is a symbolic link that cannot be read (" + failure.message() + ")");
        }
        path = path.parent_path() / next; // an absolute link replaces the whole path
    }
    return toName(path);
}

std::string describe(int errorNumber) {
    return std::generic_category().message(errorNumber);
}

/// The file to write for a name, with links resolved. @throws Error if it cannot be written
std::string checkTarget(const std::string& name) {
    std::string target = resolveLinks(name);
    std::error_code failure;
    const fs::file_status status = fs::status(toPath(target), failure);
    if (fs::is_directory(status)) {
        throw Error(name, "is a folder; name a file in it");
    }
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        throw Error(name, "is not a regular file and would be overwritten; choose another name");
    }
    if (fs::exists(status) && !isWritable(target, false)) {
        throw Error(name, "is write-protected; choose another name or change its permissions");
    }
    const std::string directory = getFolder(target);
    const fs::file_status place = fs::status(toPath(directory), failure);
    if (place.type() == fs::file_type::not_found) {
        throw Error(name, "cannot be written because there is no folder " + directory + "; create it first");
    }
    if (fs::exists(place) && !fs::is_directory(place)) {
        throw Error(name, "cannot be written because " + directory + " is not a folder");
    }
    if (!isWritable(directory, true)) {
        throw Error(name,
                    "cannot be written to the folder " + directory + " (" + describe(errno) + "); choose another one");
    }
    return target;
}

/// Creates a temporary file under an unused name.
Stream createTemporary(const std::string& target, std::string& name, std::error_code& failure) {
    constexpr int MAX_ATTEMPTS = 100;
    Stream stream;
    for (int i = 0; !stream && i < MAX_ATTEMPTS; ++i) {
        failure.clear();
        name = makeTemporaryName(getFolder(target));
        stream = createFile(name, target, failure);
        if (failure != std::errc::file_exists) {
            break;
        }
    }
    return stream;
}

} // namespace

/// Moves files into place one after the other, and can undo that. While it exists, no other thread creates or removes
/// temporary files.
class OutputFile::Placement {
public:
    explicit Placement(TemporaryFiles& temporaries) : mTemporaries(temporaries) {}
    Placement(const Placement&) = delete;
    Placement& operator=(const Placement&) = delete;

    /// Removes the hard links that were kept for restoring replaced files.
    ~Placement() {
        for (const Step& step : mSteps) {
            if (!step.backup.empty()) {
                removeFile(step.backup);
                mTemporaries.forget(step.backup);
            }
        }
    }

    std::error_code place(OutputFile& file, bool mayBeUndone) {
        Step step{&file, {}, {}, true};
        std::error_code failure;
        if (file.mExisting == OutputFile::Existing::KEEP) {
            failure = renameToNew(file.mTemporary, file.mTarget);
        } else {
            if (mayBeUndone) {
                keepReplaced(step);
            }
            failure = renameOver(file.mTemporary, file.mTarget);
        }
        if (!failure) {
            mTemporaries.forget(file.mTemporary);
            file.mTemporary.clear();
            step.placed = true;
        }
        mSteps.push_back(std::move(step));
        return failure;
    }

    /// Restores replaced files and removes new ones. @return the names of files that could not be restored
    std::vector<std::string> undo() {
        std::vector<std::string> lost;
        for (Step& step : mSteps) {
            if (!step.placed) {
                continue;
            }
            if (step.isNew) {
                removeFile(step.file->mTarget);
            } else if (step.backup.empty() || renameOver(step.backup, step.file->mTarget)) {
                lost.push_back(step.file->mName);
            } else {
                mTemporaries.forget(step.backup);
                step.backup.clear();
            }
        }
        return lost;
    }

private:
    struct Step {
        OutputFile* file;
        std::string backup; // hard link to the replaced file
        UseLock backupLock;
        bool isNew;
        bool placed = false;
    };

    void keepReplaced(Step& step) {
        const std::string& target = step.file->mTarget;
        std::error_code failure;
        step.isNew = !fs::exists(toPath(target), failure) && !failure;
        if (step.isNew) {
            return;
        }
        const std::string backup = makeTemporaryName(getFolder(target));
        if (!linkFile(target, backup)) {
            step.backup = backup;
            step.backupLock = UseLock(backup);
            mTemporaries.add(backup);
        }
    }

    TemporaryFiles& mTemporaries;
    std::vector<Step> mSteps;
};

namespace {

std::string joinNames(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names) {
        list += (list.empty() ? "" : " and ") + name;
    }
    return list;
}

[[noreturn]] void throwNotPlaced(const std::string& name, const std::error_code& failure,
                                 const std::vector<std::string>& lost) {
    if (failure == std::errc::file_exists && lost.empty()) {
        throw FileExists(name);
    }
    const std::string outcome = lost.empty()
                                    ? "nothing was changed"
                                    : "but " + joinNames(lost) + " had already been replaced and could not be restored";
    throw Error(name, "could not be moved into place (" + failure.message() + "); " + outcome);
}

/// Until its folder is flushed as well, a flushed file may lose its name in a power failure.
void storeFolders(std::span<const std::string> targets) {
    std::set<std::string> folders;
    for (const std::string& target : targets) {
        folders.insert(getFolder(target));
    }
    for (const std::string& folder : folders) {
        if (const std::error_code failure = storeFolder(folder)) {
            warn(folder, "the folder could not be flushed to the disk (" + failure.message() +
                             "); new files may be lost if the power fails");
        }
    }
}

} // namespace

/// Why a file could not be moved into place, and which files had been replaced before and could not be restored.
struct OutputFile::Refusal {
    std::string name;
    std::error_code reason;
    std::vector<std::string> lost;
};

std::optional<OutputFile::Refusal> OutputFile::placeAll(std::span<OutputFile* const> files) {
    TemporaryFiles temporaries;
    Placement placement(temporaries);
    for (OutputFile* file : files) {
        if (const std::error_code failure = placement.place(*file, file != files.back())) {
            return Refusal{file->mName, failure, placement.undo()};
        }
    }
    return std::nullopt;
}

void OutputFile::check(const std::string& name) {
    checkTarget(name);
}

OutputFile::OutputFile(const std::string& name, Existing existing)
    : mName(name), mTarget(checkTarget(name)), mExisting(existing) {
    removeStaleTemporaries(getFolder(mTarget));
    TemporaryFiles temporaries;
    std::error_code failure;
    mStream = createTemporary(mTarget, mTemporary, failure);
    if (!mStream) {
        throw Error(mName, "cannot be created (" + failure.message() + ")");
    }
    temporaries.add(mTemporary);
    mLock = UseLock(mStream.get());
}

OutputFile::~OutputFile() {
    discard();
}

void OutputFile::discard() {
    mStream.reset();
    if (!mTemporary.empty()) {
        TemporaryFiles temporaries;
        removeFile(mTemporary);
        temporaries.forget(mTemporary);
        mTemporary.clear();
    }
}

void OutputFile::noteFailure() {
    if (mFailure == 0) {
        mFailure = errno != 0 ? errno : EIO;
    }
}

void OutputFile::write(std::string_view bytes) {
    errno = 0;
    if (std::fwrite(bytes.data(), 1, bytes.size(), mStream.get()) != bytes.size()) {
        noteFailure();
    }
}

/// Flushes the temporary file. Closes the stream in any case.
void OutputFile::store() {
    errno = 0;
    if (!hasFailed() && !storeDurably(mStream.get())) {
        noteFailure();
    }
    errno = 0;
    if (std::fclose(mStream.release()) != 0) {
        noteFailure();
    }
    if (hasFailed()) {
        discard();
        throw Error(mName, "could not be written (" + describe(mFailure) + "); nothing was changed");
    }
}

void OutputFile::commit() {
    OutputFile* const file = this;
    commitTogether({&file, 1});
}

void OutputFile::commitTogether(std::span<OutputFile* const> files) {
    std::vector<std::string> targets;
    for (OutputFile* file : files) {
        file->store();
        targets.push_back(file->mTarget);
    }
    if (const std::optional<Refusal> refusal = placeAll(files)) {
        for (OutputFile* file : files) {
            file->discard();
        }
        throwNotPlaced(refusal->name, refusal->reason, refusal->lost);
    }
    for (OutputFile* file : files) {
        file->mLock = UseLock(); // it is not a temporary file any more
    }
    storeFolders(targets);
}

} // namespace zqx::pictures
