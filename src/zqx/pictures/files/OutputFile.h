// A file that appears whole under its name or not at all.
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

/// A file that was to be kept is there already.
class ZQX_PICTURES_EXPORT FileExists : public Error {
public:
    explicit FileExists(const std::string& name) : Error(name, "already exists and was left as it is") {}
};

/// Collects output in a new file beside the target, and gives it the target's name when all of it is safely stored.
///
/// Until commit() the target is untouched; an output that is not committed leaves nothing behind, and what a killed
/// process leaves, a later one removes (removeStaleTemporaries). A link at the target's name stays, what it points to
/// is replaced; a replaced file passes its permissions on.
class ZQX_PICTURES_EXPORT OutputFile {
public:
    /// What becomes of a file that has the target's name already.
    enum class Existing { REPLACE, KEEP };

    /// Checks that the target can be written, before work is spent on it. @throws Error saying why not
    static void check(const std::string& name);

    /// @throws Error when the target or its directory does not allow it
    explicit OutputFile(const std::string& name, Existing existing = Existing::REPLACE);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    /// Appends bytes. A failure is reported by commit().
    void write(std::string_view bytes);

    /// True once any write failed.
    bool hasFailed() const { return mFailure != 0; }

    /// Stores the content durably and puts it in the target's place.
    /// @throws Error when any byte could not be stored, FileExists when there is a file now that is to be kept
    void commit();

    /// Commits files that belong together: all of them, or none as far as the file system allows. Where a file that has
    /// been replaced cannot be brought back, which takes a file system without hard links, the error says which.
    /// @throws as commit()
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
    UseLock mLock;    // longer than the stream is open
    int mFailure = 0; // errno of the first write that failed
};

} // namespace zqx::pictures
