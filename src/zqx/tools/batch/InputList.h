// The pictures that files and folders on a command line stand for.
#pragma once

#include <string>
#include <vector>

namespace zqx::tools {

/// A picture file to be worked on.
struct Input {
    std::string name;
    std::string folder; ///< where it lies below the folder that was named; empty for a file that was
};

/// A name that stands for no picture.
struct InputFailure {
    std::string name;
    std::string reason;
};

struct InputList {
    std::vector<Input> inputs;
    std::vector<InputFailure> failures;
};

/// Files as they are; of folders, the visible files whose extension is that of a readable format, in the order of their
/// names. Links to folders are not followed below a folder that was named.
/// @param recursive folders in folders, too
/// @param excluded a folder that is not gone into unless it is named; may be empty, or not exist
InputList listInputs(const std::vector<std::string>& names, bool recursive, const std::string& excluded);

} // namespace zqx::tools
