// A file that appears whole under its name or not at all.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace zqx::img::app {

/// Collects output in a new file beside the target, and gives it the target's name when all of it is safely stored.
///
/// Until commit() the target is untouched; an output that is not committed leaves nothing behind. A link at the
/// target's name stays, what it points to is replaced; a replaced file passes its permissions on.
class OutputFile {
public:
    /// Checks that the target can be written, before work is spent on it. @throws Error saying why not
    static void check(const std::string& name);

    /// @throws Error when the target or its directory does not allow it
    explicit OutputFile(const std::string& name);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    ~OutputFile();

    /// Appends bytes. A failure is reported by commit().
    void write(std::string_view bytes);

    /// True once any write failed.
    bool hasFailed() const { return mFailure != 0; }

    /// Stores the content durably and puts it in the target's place. @throws Error when any byte could not be stored
    void commit();

private:
    void noteFailure();
    void closeStream();

    std::string mName;      // as the user wrote it, for messages
    std::string mTarget;    // links resolved
    std::string mTemporary; // empty once renamed
    std::FILE* mStream = nullptr;
    int mFailure = 0; // errno of the first write that failed
};

} // namespace zqx::img::app
