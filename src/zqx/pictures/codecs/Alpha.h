// Colours multiplied by alpha. The program works with straight alpha; some files hold the other kind.
#pragma once

#include "zqx/pictures/Picture.h"

namespace zqx::pictures {

/// Divides the colours of an encoded bitmap, of 8 or 16 bits with alpha, whose stored numbers are multiplied by it.
void divideCodesByAlpha(FIBITMAP* bitmap);

/// Brings the colours of a source into what is best for one target: a picture whose file holds products with alpha is
/// divided where the target keeps alpha and either wants it straight or gets other colours. For an opaque target it
/// stays as it is, which is how it looks in front of black. Other pictures are not touched.
/// @param form of the target
/// @param recolored false when pixels only move: then a file of products gets back the very numbers
void prepareAlpha(Picture& source, FREE_IMAGE_FORMAT format, Form form, bool recolored);

/// Gives a rendered bitmap the products with alpha that its file format asks for.
/// @param original the picture that it was made from
void finishAlpha(FIBITMAP* bitmap, FREE_IMAGE_FORMAT format, Form form, const Picture& original);

} // namespace zqx::pictures
