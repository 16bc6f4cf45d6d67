/// @file
/// No output may destroy what it is made from, or another output.
#pragma once

#include <string>
#include <vector>

#include <zqx/tools/Export.h>

namespace zqx::tools {

/// A file that is going to be written.
/// @ingroup tools
struct Output {
    std::string option;        ///< what asks for it, for messages: "--difference"
    std::string name;          ///< of the file in UTF-8; empty for none
    std::string replaceable{}; ///< the one input that it may replace, or empty
};

/// Refuses outputs that are a file that is read, or the same file as another output. To be asked before any work.
///
/// It is the file that counts, not its name: a link, a hard link and another spelling on a file system that ignores
/// case are all the file itself. Outputs that differ in case alone count as one, whatever the file system.
/// @param inputs all files that are read; empty names are none
/// @param outputs all files that are written
/// @throws pictures::UsageError naming the option and the file
/// @ingroup tools
ZQX_TOOLS_EXPORT void checkOutputs(const std::vector<std::string>& inputs, const std::vector<Output>& outputs);

} // namespace zqx::tools
