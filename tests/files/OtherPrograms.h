// The programs that judge: they write files for the component to load, and read those that it saves.
#pragma once

#include <string>
#include <vector>

#include "Samples.h"

namespace zqx::img::test {

/// Writes a picture with ImageMagick. @param options go before the file's name, which may have a format as a prefix
void writeWithMagick(const Samples& samples, const std::string& file, const std::vector<std::string>& options = {});

/// What ImageMagick sees in a file, turned into samples of the given kind.
Samples readWithMagick(const std::string& file, int channels, Depth depth);

/// The XMP packet that ExifTool finds in a file.
std::string xmpFromExifTool(const std::string& file);

} // namespace zqx::img::test
