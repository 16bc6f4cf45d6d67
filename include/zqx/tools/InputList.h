/// @file
/// Finding the pictures in files and folders.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include <zqx/tools/Export.h>

namespace zqx::tools {

/// A picture file to work on.
/// @ingroup tools
struct Input {
    std::string name;   ///< of the file, in UTF-8
    std::string folder; ///< relative to the folder that was given; empty for a file that was given itself
};

/// A file or folder name that yields no picture.
/// @ingroup tools
struct InputFailure {
    std::string name;   ///< as given
    std::string reason; ///< a phrase that continues a sentence beginning with the name
};

/// The number of files for each extension, in lower case and without the dot.
/// @ingroup tools
using ExtensionCounts = std::map<std::string, std::size_t>;

/// The result of listInputs().
/// @ingroup tools
struct InputList {
    std::vector<Input> inputs;          ///< in the order in which they were found
    std::vector<InputFailure> failures; ///< names that yield no picture
    ExtensionCounts unreadable;         ///< pictures left out because this build cannot read their format
};

/// Finds the pictures to work on.
///
/// Files are taken as they are; from folders, all visible files with the extension of a readable format, sorted by
/// name. Below a given folder, symbolic links to folders are not followed.
/// @param names of files and folders, in UTF-8
/// @param recursive whether to include subfolders
/// @param excluded a folder to leave out unless it is given itself; may be empty or missing
/// @return the pictures; whatever is wrong with files and folders is reported in its failures, not by an exception
/// @ingroup tools
ZQX_TOOLS_EXPORT InputList listInputs(const std::vector<std::string>& names, bool recursive,
                                      const std::string& excluded);

/// A sentence such as "skipped 12 files in formats this build cannot read: 10 .heic, 2 .avif", most frequent first;
/// empty if there are none.
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string describeUnreadable(const ExtensionCounts& unreadable);

} // namespace zqx::tools
