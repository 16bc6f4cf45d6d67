/// @file
/// Planning a run: what happens to every picture is decided before any work is done.
#pragma once

#include <string>
#include <vector>

#include <zqx/tools/Export.h>
#include <zqx/tools/InputList.h>

namespace zqx::tools {

/// One picture of a run.
/// @ingroup tools
struct PlannedPicture {
    /// What happens to the output file.
    enum class Action {
        CREATE,  ///< it does not exist yet and is written
        REPLACE, ///< it exists and is replaced
        SKIP,    ///< it is not written
    };

    std::string input;  ///< file to read
    std::string output; ///< file to write
    Action action;      ///< what happens to the output
    std::string reason; ///< why the picture is skipped
};

/// How outputs are named, and which of them are to be written.
/// @ingroup tools
struct PlanOptions {
    std::string output;                 ///< output file of a single picture, or empty
    std::string outputDirectory;        ///< output folder for any number of pictures, or empty
    std::string nameTemplate;           ///< of the file names in outputDirectory, see NameTemplate
    std::string comparison;             ///< second output of a single picture, or empty
    std::vector<std::string> documents; ///< files that, like the input, make an older output out of date
    bool keepExisting = false;          ///< skip pictures whose output exists
    bool onlyOutdated = false;          ///< skip pictures whose output is as new as everything it depends on
};

/// Names the outputs and determines which of them are to be written. No file is created or changed.
/// @throws pictures::UsageError if two pictures would have the same output, if an output is a file that the run reads
///         (except that a single picture may be replaced by its own output), or if an output has no extension of a
///         format that can be written
/// @ingroup tools
ZQX_TOOLS_EXPORT std::vector<PlannedPicture> planBatch(const std::vector<Input>& inputs, const PlanOptions& options);

/// Creates the missing folders of all outputs that are to be written.
/// @throws pictures::Error if a folder cannot be created
/// @ingroup tools
ZQX_TOOLS_EXPORT void makeFolders(const std::vector<PlannedPicture>& plan, const std::string& outputDirectory);

} // namespace zqx::tools
