// Files with something to look at, made of a picture but not the picture itself.
#pragma once

#include <string>
#include <vector>

#include "zqx/pictures/Picture.h"
#include "zqx/pictures/codecs/EncodeOptions.h"

namespace zqx::app {

/// Refuses to write over a file that is read in the same run. @throws UsageError
void refuseToReplace(const std::string& output, const std::vector<std::string>& inputs);

/// Checks that a picture file can be written and is none of those that it is made of, before work is spent on it.
/// @throws Error, and UsageError for a name that is no picture's or one of the inputs'
void checkResultFile(const std::string& name, const std::vector<std::string>& inputs);

/// Writes a bitmap in the form nearest to its own that the file can hold.
/// @param original what its colours and metadata come from. @throws Error
void writeResultFile(const std::string& name, const pictures::Bitmap& bitmap, pictures::Form form,
                     const pictures::Picture& original, const pictures::EncodeOptions& encoding);

/// An original that has nothing to pass on.
pictures::Picture blankOriginal();

} // namespace zqx::app
