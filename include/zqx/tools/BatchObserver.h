/// @file
/// The interface through which a run reports its progress.
#pragma once

#include <string>

#include <zqx/tools/PictureRecord.h>

namespace zqx::tools {

/// Is notified of everything that happens in a run.
///
/// All methods except tick() are called by several threads, possibly at once. If begin() or warning() throws, the
/// current picture fails; an exception from any other method ends the run and is passed on to the caller of runBatch().
/// @ingroup tools
class BatchObserver {
public:
    BatchObserver() = default;
    BatchObserver(const BatchObserver&) = delete;
    BatchObserver& operator=(const BatchObserver&) = delete;
    virtual ~BatchObserver() = default;

    /// Work on a picture begins.
    virtual void begin(const std::string& input) = 0;

    /// Something was done, but not exactly as asked.
    /// @param line "subject: text"
    virtual void warning(const std::string& line) = 0;

    /// Work on a picture has ended, or it was skipped.
    virtual void finish(const PictureRecord& record) = 0;

    /// Called several times a second by the thread that runs the batch.
    virtual void tick() = 0;

    /// Whether anyone still wants the results; once this is false, no further pictures are begun.
    virtual bool isHeard() const = 0;
};

} // namespace zqx::tools
