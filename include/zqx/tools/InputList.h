/// @file
/// The pictures that files and folders stand for.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include <zqx/tools/Export.h>

namespace zqx::tools {

/// A picture file to be worked on.
/// @ingroup tools
struct Input {
    std::string name;   ///< of the file, in UTF-8
    std::string folder; ///< where it lies below the folder that was named; empty for a file that was
};

/// A name that stands for no picture.
/// @ingroup tools
struct InputFailure {
    std::string name;   ///< as it was given
    std::string reason; ///< the end of a sentence that begins with the name
};

/// How many files there are of each extension, which is in lower case and without its dot.
/// @ingroup tools
using ExtensionCounts = std::map<std::string, std::size_t>;

/// What was found.
/// @ingroup tools
struct InputList {
    std::vector<Input> inputs;          ///< in the order of the names
    std::vector<InputFailure> failures; ///< names without pictures
    ExtensionCounts unreadable;         ///< pictures left out because this build reads no files of their format
};

/// Finds the pictures to work on.
///
/// Files are taken as they are; of folders, the visible files whose extension is that of a readable format, in the
/// order of their names. Links to folders are not followed below a folder that was named.
/// @param names of files and folders, in UTF-8
/// @param recursive whether folders in folders count, too
/// @param excluded a folder that is not gone into unless it is named; may be empty, or not exist
/// @return never throws for what it finds on disk: see failures
/// @ingroup tools
ZQX_TOOLS_EXPORT InputList listInputs(const std::vector<std::string>& names, bool recursive,
                                      const std::string& excluded);

/// "skipped 12 files in formats this build cannot read: 10 .heic, 2 .avif", the most frequent first; empty when there
/// are none.
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string describeUnreadable(const ExtensionCounts& unreadable);

} // namespace zqx::tools
