// Works a plan off, several pictures at once.
#pragma once

#include <string>
#include <vector>

#include "zqx/tools/batch/ApplyPicture.h"
#include "zqx/tools/batch/BatchObserver.h"
#include "zqx/tools/batch/BatchPlan.h"
#include "zqx/tools/batch/MemoryGate.h"
#include "zqx/tools/batch/Threads.h"

namespace zqx::tools {

/// Does what is planned. A picture that fails does not stop the others; the observer is told everything.
/// @param comparison second output of the only picture, or empty
void runBatch(const std::vector<PlannedPicture>& plan, const std::string& comparison, const ApplySettings& settings,
              const WorkSplit& split, MemoryGate& gate, BatchObserver& observer);

/// Only tells what would be done.
/// @param makesFolders whether missing folders would be made
void rehearseBatch(const std::vector<PlannedPicture>& plan, bool makesFolders, BatchObserver& observer);

} // namespace zqx::tools
