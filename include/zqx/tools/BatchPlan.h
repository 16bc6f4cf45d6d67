/// @file
/// What a run is going to do, decided before anything is done.
#pragma once

#include <string>
#include <vector>

#include <zqx/tools/Export.h>
#include <zqx/tools/InputList.h>

namespace zqx::tools {

/// One picture of a run.
/// @ingroup tools
struct PlannedPicture {
    /// What is to become of the output file.
    enum class Action {
        CREATE,  ///< there is none yet
        REPLACE, ///< the one that is there goes
        SKIP,    ///< nothing
    };

    std::string input;  ///< name of the file that is read
    std::string output; ///< name of the file that is written
    Action action;      ///< what is done
    std::string reason; ///< why it is skipped
};

/// How outputs are named, and which of them are wanted.
/// @ingroup tools
struct PlanOptions {
    std::string output;                 ///< for the only picture, or empty
    std::string outputDirectory;        ///< for any number of them, or empty
    std::string nameTemplate;           ///< names in outputDirectory, see NameTemplate
    std::string comparison;             ///< a second output for the only picture, or empty
    std::vector<std::string> documents; ///< files whose change makes outputs out of date, beside the input's
    bool keepExisting = false;          ///< skip pictures whose output exists
    bool onlyOutdated = false;          ///< skip pictures whose output is as new as everything it is made from
};

/// Names the outputs and finds out which are to be written. Nothing is made or changed.
/// @throws pictures::UsageError when two pictures would have one output, an output is a file that the run reads (but a
///         single picture may be replaced by its own output), or no picture can be written under a name
/// @ingroup tools
ZQX_TOOLS_EXPORT std::vector<PlannedPicture> planBatch(const std::vector<Input>& inputs, const PlanOptions& options);

/// Makes the folders of all outputs that are to be written.
/// @throws pictures::Error when one cannot be made
/// @ingroup tools
ZQX_TOOLS_EXPORT void makeFolders(const std::vector<PlannedPicture>& plan, const std::string& outputDirectory);

} // namespace zqx::tools
