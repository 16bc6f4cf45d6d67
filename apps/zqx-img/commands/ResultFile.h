// Files with something to look at, made of a picture but not the picture itself.
#pragma once

#include <string>

#include "zqx/pictures/Picture.h"
#include "zqx/pictures/codecs/EncodeOptions.h"

namespace zqx::app {

/// Checks that the file can be written and is not the picture that it is made of, which would be lost.
/// @throws Error, and UsageError for a name that cannot be meant
void checkResultFile(const std::string& name, const std::string& input);

/// Writes a bitmap in the form nearest to its own that the file can hold.
/// @param original what its colours and metadata come from. @throws Error
void writeResultFile(const std::string& name, const pictures::Bitmap& bitmap, pictures::Form form,
                     const pictures::Picture& original, const pictures::EncodeOptions& encoding);

/// An original that has nothing to pass on.
pictures::Picture blankOriginal();

} // namespace zqx::app
