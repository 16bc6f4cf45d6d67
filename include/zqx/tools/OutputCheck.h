/// @file
/// Protection of inputs and outputs from being overwritten by each other.
#pragma once

#include <string>
#include <vector>

#include <zqx/tools/Export.h>

namespace zqx::tools {

/// A file that is about to be written.
/// @ingroup tools
struct Output {
    std::string option;        ///< option or argument that names it, for error messages: "--difference"
    std::string name;          ///< of the file, in UTF-8; empty for none
    std::string replaceable{}; ///< the one input that the output may replace, or empty
};

/// Refuses an output that is one of the inputs or the same file as another output. Call it before any work is done.
///
/// Files are compared by identity, not by name: symbolic links, hard links and, on file systems that ignore case, other
/// spellings all denote the same file. Outputs whose names differ in case only are refused on every file system.
/// @param inputs all files that are read; empty names are ignored
/// @param outputs all files that are written
/// @throws pictures::UsageError naming the option and the file
/// @ingroup tools
ZQX_TOOLS_EXPORT void checkOutputs(const std::vector<std::string>& inputs, const std::vector<Output>& outputs);

} // namespace zqx::tools
