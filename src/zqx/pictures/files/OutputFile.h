// A file that appears complete under its name or not at all.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "zqx/pictures/Export.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/FileNames.h"
#include "zqx/pictures/files/FileSystem.h"

namespace zqx::pictures {

/// The file exists already and was to be kept.
class ZQX_PICTURES_EXPORT FileExists : public Error {
public:
    explicit FileExists(const std::string& name) : Error(name, "already exists and was left as it is") {}
};

/// Writes to a temporary file beside the target and renames it to the target once all data are safely stored.
///
/// Until commit() the target is not touched. An output that is not committed leaves nothing behind; what a killed
/// process leaves behind, a later one removes (removeStaleTemporaries). If the target is a symbolic link, the link is
/// kept and the file that it points to is replaced. The new file takes over the permissions of the one that it
/// replaces.
class ZQX_PICTURES_EXPORT OutputFile {
public:
    /// What happens to an existing file.
    enum class Existing { REPLACE, KEEP };

    /// Checks that the target can be written, before work is spent on it. @throws Error if it cannot
    static void check(const std::string& name);

    /// @throws Error if the target cannot be written
    explicit OutputFile(const std::string& name, Existing existing = Existing::REPLACE);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    /// Appends bytes. A failure is reported by commit().
    void write(std::string_view bytes);

    /// Whether any write has failed.
    bool hasFailed() const { return mFailure != 0; }

    /// Flushes the content to the device and moves it into place.
    /// @throws Error if not everything could be stored, FileExists if an existing file is to be kept
    void commit();

    /// Commits files that belong together: all of them or none. On file systems without hard links a replaced file may
    /// be impossible to restore; the error then says which.
    /// @throws Error, FileExists like commit()
    static void commitTogether(std::span<OutputFile* const> files);

private:
    class Placement;
    struct Refusal;

    static std::optional<Refusal> placeAll(std::span<OutputFile* const> files);
    void noteFailure();
    void store();
    void discard();

    std::string mName;      // as the user wrote it, for messages
    std::string mTarget;    // links resolved
    std::string mTemporary; // empty once renamed
    Existing mExisting;
    Stream mStream;
    UseLock mLock;    // held longer than the stream is open
    int mFailure = 0; // errno of the first write that failed
};

} // namespace zqx::pictures
