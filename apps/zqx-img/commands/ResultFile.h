// Files with something to look at, made of a picture but not the picture itself.
#pragma once

#include <string>

#include "zqx/pictures/Picture.h"
#include "zqx/pictures/codecs/WriteOptions.h"

namespace zqx::app {

/// Checks that the file can be written and is not the picture that it is made of, which would be lost.
/// @throws Error, and UsageError for a name that cannot be meant
void checkResultFile(const std::string& name, const std::string& input);

/// Writes an image in the layout nearest to a wanted one that the file can hold.
/// @param wanted the image is in its working layout
/// @param original what its colours and metadata come from; an empty one has nothing to pass on. @throws Error
void writeResultFile(const std::string& name, const img::Image& image, pictures::SampleLayout wanted,
                     const pictures::Picture& original, const pictures::WriteOptions& encoding);

} // namespace zqx::app
