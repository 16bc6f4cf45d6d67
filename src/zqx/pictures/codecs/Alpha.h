// Colours multiplied by alpha. The program works with straight alpha; some files hold the other kind.
#pragma once

#include "zqx/pictures/Export.h"
#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/Picture.h"

namespace zqx::pictures {

/// Brings the colours of a source into what is best for one target: a picture whose file holds premultiplied colour is
/// unpremultiplied where the target keeps alpha and either wants it straight or gets other colours. For an opaque
/// target it stays as it is, which is how it looks in front of black. Other pictures are not touched.
/// @param layout of the target
/// @param recolored false when pixels only move: then a premultiplied file gets back the very numbers
ZQX_PICTURES_EXPORT void prepareAlpha(Picture& source, FileFormat format, SampleLayout layout, bool recolored);

/// Brings the colours of a picture into straight ones, for operations that want those. Where alpha is 0, colour stays.
ZQX_PICTURES_EXPORT void straightenAlpha(Picture& picture);

/// Premultiplies rendered pixels where their file format asks for that.
/// @param original the picture that they were made from
void finishAlpha(img::Image& image, FileFormat format, SampleLayout layout, const Picture& original);

} // namespace zqx::pictures
