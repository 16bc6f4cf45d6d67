// Works a plan off, several pictures at once.
#pragma once

#include <string>
#include <vector>

#include "ApplyPicture.h"
#include "BatchPlan.h"
#include "MemoryGate.h"
#include "RunReport.h"
#include "Threads.h"

namespace zqx::img::app {

/// Does what is planned. A picture that fails does not stop the others; everything goes to the report.
/// @param comparison second output of the only picture, or empty
void runBatch(const std::vector<PlannedPicture>& plan, const std::string& comparison, const ApplySettings& settings,
              const WorkSplit& split, MemoryGate& gate, RunReport& report);

/// Only tells what would be done.
/// @param makesFolders whether missing folders would be made
void rehearseBatch(const std::vector<PlannedPicture>& plan, bool makesFolders, RunReport& report);

} // namespace zqx::img::app
