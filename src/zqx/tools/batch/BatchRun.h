// Runs a plan: several pictures at once.
#pragma once

#include <string>
#include <vector>

#include <zqx/tools/BatchObserver.h>
#include <zqx/tools/BatchPlan.h>
#include <zqx/tools/MemoryGate.h>

#include "zqx/tools/batch/ApplyPicture.h"
#include "zqx/tools/batch/Threads.h"

namespace zqx::tools {

/// Does what is planned. A picture that fails does not stop the others; the observer is told everything.
/// What the observer itself throws ends the run, and is thrown here once the pictures at work are done.
/// @param comparison second output of the only picture, or empty
void runBatch(const std::vector<PlannedPicture>& plan, const std::string& comparison, const ApplySettings& settings,
              const WorkSplit& split, MemoryGate& gate, BatchObserver& observer);

/// Only tells what would be done.
/// @param makesFolders whether missing folders would be made
void rehearseBatch(const std::vector<PlannedPicture>& plan, bool makesFolders, BatchObserver& observer);

} // namespace zqx::tools
