// Picture files by FreeImage's encoders.
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
/// @param pixels in the working format of the layout; used up
/// @param layout one that the format holds
/// @param quality 1 to 100, for formats that have one
/// @param metadata what the encoder is to put into the file
/// @param consumer gets the whole file
/// @throws Error when the encoder refuses
void encodeByFreeImage(const std::string& name, FileFormat format, PixelBuffer pixels, SampleLayout layout, int quality,
                       const Metadata& metadata, const std::function<void(std::string_view)>& consumer);

} // namespace zqx::pictures
