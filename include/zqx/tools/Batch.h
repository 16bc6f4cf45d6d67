/// @file
/// Adjusting picture files, one at a time or many at once.
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

/// What to do with every picture of a run.
/// @ingroup tools
struct ApplySettings {
    img::ImageProcessingPipeline pipeline; ///< the adjustments; its source image and active stages are ignored
    pictures::ReadOptions loading;         ///< how pictures are read
    pictures::WriteOptions encoding;       ///< how outputs are written
    bool keepExisting = false;             ///< keep an output file that appeared after the run was planned
};

/// The files of one picture.
/// @ingroup tools
struct ApplyFiles {
    std::string input;      ///< may be the same file as the output
    std::string output;     ///< the extension selects the format
    std::string comparison; ///< also written: left half before, right half after; empty for none
};

/// Adjusts one picture. Either all of its outputs appear or none does.
/// @throws pictures::Error naming the file
/// @ingroup tools
ZQX_TOOLS_EXPORT ApplyResult applyToPicture(const ApplyFiles& files, const ApplySettings& settings);

/// How the processors are shared among the pictures of a run.
/// @ingroup tools
struct WorkSplit {
    unsigned jobs = 1;    ///< pictures processed at once
    unsigned threads = 1; ///< threads for each picture
};

/// Shares the processors among pictures. With many pictures, one picture per processor is fastest. Whichever of jobs
/// and threads is given determines the other.
/// @param pictures number of pictures to process
/// @param processors number of processors, at least 1
/// @param jobs pictures to process at once, at least 1
/// @param threads per picture, 0 for all processors
/// @ingroup tools
ZQX_TOOLS_EXPORT WorkSplit splitWork(std::size_t pictures, unsigned processors, std::optional<unsigned> jobs,
                                     std::optional<unsigned> threads);

/// Carries out a plan, several pictures at once, on threads of its own. The results do not depend on the number of
/// threads.
///
/// A picture that fails, whatever is thrown, does not stop the others: the observer is notified. An exception that the
/// observer itself throws ends the run, and is rethrown here once the pictures in progress are finished.
/// @param plan for all pictures
/// @param comparison second output of a single picture, or empty
/// @param settings for all pictures
/// @param split of the processors
/// @param gate limits the memory of all pictures in progress
/// @param observer is notified of everything
/// @ingroup tools
ZQX_TOOLS_EXPORT void runBatch(const std::vector<PlannedPicture>& plan, const std::string& comparison,
                               const ApplySettings& settings, const WorkSplit& split, MemoryGate& gate,
                               BatchObserver& observer);

/// Reports what runBatch() would do, without doing it: checks that inputs can be opened and outputs written.
/// @param plan for all pictures
/// @param makesFolders whether missing output folders would be created
/// @param observer is notified of every picture
/// @ingroup tools
ZQX_TOOLS_EXPORT void rehearseBatch(const std::vector<PlannedPicture>& plan, bool makesFolders,
                                    BatchObserver& observer);

} // namespace zqx::tools
