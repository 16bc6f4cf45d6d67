// Pictures that commands other than apply write: previews, contact sheets and charts.
#pragma once

#include <string>
#include <vector>

#include "zqx/pictures/Picture.h"
#include "zqx/pictures/Writer.h"

namespace zqx::app {

/// Checks that a picture file can be written and is not one of the inputs, before work is spent on it.
/// @throws Error; UsageError if the extension belongs to no picture format, or if the file is an input
void checkResultFile(const std::string& name, const std::vector<std::string>& inputs);

/// Writes an image in the layout nearest to the wanted one that the file format supports.
/// @param wanted the image is in its working layout
/// @param original the picture whose metadata to write; may be empty
/// @throws Error
void writeResultFile(const std::string& name, const img::Image& image, pictures::SampleLayout wanted,
                     const pictures::Picture& original, const pictures::WriteOptions& encoding);

} // namespace zqx::app
