// Encoding of picture files by FreeImage.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/Metadata.h"
#include "zqx/pictures/PixelBuffer.h"

namespace zqx::pictures {

/// Encodes pixels into memory.
/// @param name of the file, for messages
/// @param pixels in the working format of the layout; consumed
/// @param layout one that the format supports
/// @param quality 1 to 100, for lossy formats
/// @param metadata to be written by the encoder
/// @param consumer receives the whole file
/// @throws Error if the encoder fails
void encodeByFreeImage(const std::string& name, FileFormat format, PixelBuffer pixels, SampleLayout layout, int quality,
                       const Metadata& metadata, const std::function<void(std::string_view)>& consumer);

} // namespace zqx::pictures
