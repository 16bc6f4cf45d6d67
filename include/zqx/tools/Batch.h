/// @file
/// Pictures through the pipeline, one or many at once.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <zqx/img/ImageProcessingPipeline.h>
#include <zqx/pictures/Reader.h>
#include <zqx/pictures/Writer.h>
#include <zqx/tools/BatchObserver.h>
#include <zqx/tools/BatchPlan.h>
#include <zqx/tools/Export.h>
#include <zqx/tools/MemoryGate.h>
#include <zqx/tools/PictureRecord.h>

namespace zqx::tools {

/// What is done to every picture of a run.
/// @ingroup tools
struct ApplySettings {
    img::ImageProcessingPipeline pipeline; ///< the adjustments; its source image and active stages do not matter
    pictures::ReadOptions loading;         ///< how pictures are read
    pictures::WriteOptions encoding;       ///< how outputs are written
    bool keepExisting = false;             ///< leave an output that has appeared since the run was planned
};

/// The files of one picture.
/// @ingroup tools
struct ApplyFiles {
    std::string input;      ///< may be the output, too
    std::string output;     ///< its extension decides over the format
    std::string comparison; ///< left half before, right half after; or empty
};

/// Adjusts one picture. All of its outputs appear, or none does.
/// @throws pictures::Error naming the file
/// @ingroup tools
ZQX_TOOLS_EXPORT ApplyResult applyToPicture(const ApplyFiles& files, const ApplySettings& settings);

/// Pictures at once, and threads that work on each.
/// @ingroup tools
struct WorkSplit {
    unsigned jobs = 1;    ///< pictures at once
    unsigned threads = 1; ///< for each of them
};

/// Shares processors out. Many pictures are best done one a processor; what is given decides over the rest.
/// @param pictures to be worked on
/// @param processors at least 1
/// @param jobs pictures at once, at least 1
/// @param threads for each picture, 0 for all processors
/// @ingroup tools
ZQX_TOOLS_EXPORT WorkSplit splitWork(std::size_t pictures, unsigned processors, std::optional<unsigned> jobs,
                                     std::optional<unsigned> threads);

/// Does what is planned, several pictures at once, on threads of its own. Results do not depend on their number.
///
/// A picture that fails, whatever is thrown, does not stop the others; the observer is told everything. What the
/// observer itself throws ends the run, and is thrown here once the pictures at work are done.
/// @param plan of all pictures
/// @param comparison second output of the only picture, or empty
/// @param settings for all pictures
/// @param split of the processors
/// @param gate that keeps pictures within an amount of memory
/// @param observer is told of everything
/// @ingroup tools
ZQX_TOOLS_EXPORT void runBatch(const std::vector<PlannedPicture>& plan, const std::string& comparison,
                               const ApplySettings& settings, const WorkSplit& split, MemoryGate& gate,
                               BatchObserver& observer);

/// Only tells what would be done: that inputs can be opened, and outputs written.
/// @param plan of all pictures
/// @param makesFolders whether missing folders would be made
/// @param observer is told of everything
/// @ingroup tools
ZQX_TOOLS_EXPORT void rehearseBatch(const std::vector<PlannedPicture>& plan, bool makesFolders,
                                    BatchObserver& observer);

} // namespace zqx::tools
