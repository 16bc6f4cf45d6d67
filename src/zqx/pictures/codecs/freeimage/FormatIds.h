// FreeImage's numbers of file formats.
#pragma once

#include <FreeImage.h>

#include "zqx/pictures/FileFormat.h"

namespace zqx::pictures {

/// FIF_UNKNOWN for UNKNOWN.
FREE_IMAGE_FORMAT idOf(FileFormat format);

/// UNKNOWN for formats that later versions of FreeImage may add.
FileFormat formatOfId(FREE_IMAGE_FORMAT id);

/// What a layout is in a file's bitmap.
FREE_IMAGE_TYPE storedTypeOf(SampleLayout layout);

} // namespace zqx::pictures
