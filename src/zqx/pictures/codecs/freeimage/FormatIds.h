// FreeImage's identifiers of file formats and bitmap types.
#pragma once

#include <FreeImage.h>

#include "zqx/pictures/FileFormat.h"

namespace zqx::pictures {

/// FIF_UNKNOWN for UNKNOWN.
FREE_IMAGE_FORMAT idOf(FileFormat format);

/// The inverse of idOf(); UNKNOWN for formats that only later versions of FreeImage have.
FileFormat formatOfId(FREE_IMAGE_FORMAT id);

/// The bitmap type in which a layout is encoded and decoded.
FREE_IMAGE_TYPE storedTypeOf(SampleLayout layout);

} // namespace zqx::pictures
