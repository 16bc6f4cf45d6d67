// Files with something to look at, made of a picture but not the picture itself.
#pragma once

#include <string>

#include "EncodeOptions.h"
#include "Picture.h"

namespace zqx::img::app {

/// Checks that the file can be written and is not the picture that it is made of, which would be lost.
/// @throws Error, and UsageError for a name that cannot be meant
void checkResultFile(const std::string& name, const std::string& input);

/// Writes a bitmap in the form nearest to its own that the file can hold.
/// @param original what its colours and metadata come from. @throws Error
void writeResultFile(const std::string& name, const Bitmap& bitmap, Form form, const Picture& original,
                     const EncodeOptions& encoding);

/// An original that has nothing to pass on.
Picture blankOriginal();

} // namespace zqx::img::app
