/// @file
/// Who is told how a run of many pictures goes.
#pragma once

#include <string>

#include <zqx/tools/PictureRecord.h>

namespace zqx::tools {

/// Is told of everything that happens in a run.
///
/// All methods but tick() are called by several threads, possibly at once. An exception that begin() or warning()
/// throws fails the picture at hand; one from another method ends the run, and is thrown by runBatch() to its caller.
/// @ingroup tools
class BatchObserver {
public:
    BatchObserver() = default;
    BatchObserver(const BatchObserver&) = delete;
    BatchObserver& operator=(const BatchObserver&) = delete;
    virtual ~BatchObserver() = default;

    /// Work on a picture begins.
    virtual void begin(const std::string& input) = 0;

    /// Something was done, but not quite as asked.
    /// @param line "subject: text"
    virtual void warning(const std::string& line) = 0;

    /// What became of a picture.
    virtual void finish(const PictureRecord& record) = 0;

    /// Called several times a second by the thread that runs the batch.
    virtual void tick() = 0;

    /// False once nobody wants results any more: no further pictures are begun.
    virtual bool isHeard() const = 0;
};

} // namespace zqx::tools
