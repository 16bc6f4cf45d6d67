// A file that appears whole under its name or not at all.
#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

#include "zqx/pictures/files/Error.h"

namespace zqx::pictures {

/// The UTF-8 name of a path, on every system.
std::string toName(const std::filesystem::path& path);

/// A file that was to be kept is there already.
class FileExists : public Error {
public:
    explicit FileExists(const std::string& name) : Error(name, "exists and is to be kept") {}
};

/// Collects output in a new file beside the target, and gives it the target's name when all of it is safely stored.
///
/// Until commit() the target is untouched; an output that is not committed leaves nothing behind. A link at the
/// target's name stays, what it points to is replaced; a replaced file passes its permissions on.
class OutputFile {
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

private:
    void noteFailure();
    void discard();

    std::string mName;      // as the user wrote it, for messages
    std::string mTarget;    // links resolved
    std::string mTemporary; // empty once renamed
    Existing mExisting;
    std::FILE* mStream = nullptr;
    int mFailure = 0; // errno of the first write that failed
};

} // namespace zqx::pictures
