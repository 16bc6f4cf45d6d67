// Pictures that commands make besides adjusted ones: previews, sheets and charts.
#pragma once

#include <string>
#include <vector>

#include "zqx/pictures/Picture.h"
#include "zqx/pictures/Writer.h"

namespace zqx::app {

/// Checks that a picture file can be written and is none of those that it is made of, before work is spent on it.
/// @throws Error, and UsageError for a name of no picture format or that of an input
void checkResultFile(const std::string& name, const std::vector<std::string>& inputs);

/// Writes an image in the layout nearest to a wanted one that the file can hold.
/// @param wanted the image is in its working layout
/// @param original what its colours and metadata come from; an empty one has nothing to pass on. @throws Error
void writeResultFile(const std::string& name, const img::Image& image, pictures::SampleLayout wanted,
                     const pictures::Picture& original, const pictures::WriteOptions& encoding);

} // namespace zqx::app
