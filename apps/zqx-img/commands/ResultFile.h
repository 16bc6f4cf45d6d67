// Pictures that commands make besides adjusted ones: previews, sheets and charts.
#pragma once

#include <string>
#include <vector>

#include "zqx/pictures/Picture.h"
#include "zqx/pictures/codecs/EncodeOptions.h"

namespace zqx::app {

/// Checks that a picture file can be written and is none of those that it is made of, before work is spent on it.
/// @throws Error, and UsageError for a name of no picture format or that of an input
void checkResultFile(const std::string& name, const std::vector<std::string>& inputs);

/// Writes a bitmap in the form nearest to its own that the file can hold.
/// @param original what its colours and metadata come from. @throws Error
void writeResultFile(const std::string& name, const pictures::Bitmap& bitmap, pictures::Form form,
                     const pictures::Picture& original, const pictures::EncodeOptions& encoding);

/// An original without metadata to pass on.
pictures::Picture blankOriginal();

} // namespace zqx::app
