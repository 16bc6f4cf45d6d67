// Conversion between straight and premultiplied alpha: operations want straight alpha, some files store the other kind.
#pragma once

#include "zqx/pictures/Export.h"
#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/Picture.h"

namespace zqx::pictures {

/// Prepares the colours of a source for one target. A premultiplied picture is unpremultiplied if the target keeps
/// alpha and either stores it straight or gets changed colours. For an opaque target it stays premultiplied, which is
/// how it looks over black. Other pictures are not changed.
/// @param layout of the target
/// @param recolored false if pixels are at most moved: a premultiplied file then gets back exactly the same values
ZQX_PICTURES_EXPORT void prepareAlpha(Picture& source, FileFormat format, SampleLayout layout, bool recolored);

/// Unpremultiplies a picture if necessary, for operations that need straight alpha. Where alpha is 0, colours are kept.
ZQX_PICTURES_EXPORT void straightenAlpha(Picture& picture);

/// Premultiplies rendered pixels if their file format requires it.
/// @param original the picture from which they were rendered
void finishAlpha(img::Image& image, FileFormat format, SampleLayout layout, const Picture& original);

} // namespace zqx::pictures
