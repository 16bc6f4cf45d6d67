// FreeImage's identifiers of file formats and bitmap types.
#pragma once

#include <FreeImage.h>

#include "zqx/pictures/FileFormat.h"

namespace zqx::pictures {

/// FIF_UNKNOWN for UNKNOWN.
FREE_IMAGE_FORMAT getFormatId(FileFormat format);

/// The inverse of getFormatId(); UNKNOWN for formats that only later versions of FreeImage have.
FileFormat formatOfId(FREE_IMAGE_FORMAT id);

/// The bitmap type in which a layout is encoded and decoded.
FREE_IMAGE_TYPE getStoredType(SampleLayout layout);

} // namespace zqx::pictures
