// Picture files into working bitmaps.
#pragma once

#include <string>

#include "InputFile.h"
#include "LoadOptions.h"
#include "Picture.h"

namespace zqx::img::app {

/// Decodes a file upright and brings it into the working form that keeps most of it, warning of what is lost.
/// @throws Error naming the file
Picture loadPicture(const std::string& name, const LoadOptions& options);

/// Like FreeImage's own loading of a file, but with FreeImage's words in the failure and none for a damaged file.
Bitmap decodeBitmap(InputFile& file, FREE_IMAGE_FORMAT format, int flags);

} // namespace zqx::img::app
