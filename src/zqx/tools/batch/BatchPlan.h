// What a run is going to do, decided before anything is done.
#pragma once

#include <string>
#include <vector>

#include "zqx/tools/batch/InputList.h"

namespace zqx::tools {

/// One picture of a run.
struct PlannedPicture {
    enum class Action { CREATE, REPLACE, SKIP };

    std::string input;
    std::string output;
    Action action;
    std::string reason; ///< why it is skipped
};

struct PlanOptions {
    std::string output;          ///< for the only picture, or empty
    std::string outputDirectory; ///< for any number of them, or empty
    std::string nameTemplate;
    std::string comparison;             ///< a second output for the only picture, or empty
    std::vector<std::string> documents; ///< files whose change makes outputs out of date, beside the input's
    bool keepExisting = false;
    bool onlyOutdated = false;
};

/// Names the outputs and finds out which are to be written.
/// @throws UsageError when two pictures would have one output, an output is an input of the run, or no picture can be
///         written under a name
std::vector<PlannedPicture> planBatch(const std::vector<Input>& inputs, const PlanOptions& options);

/// Makes the folders of all outputs that are to be written. @throws Error when one cannot be made
void makeFolders(const std::vector<PlannedPicture>& plan, const std::string& outputDirectory);

} // namespace zqx::tools
