// What travels beside the pixels: colour profile, Exif, IPTC, XMP, resolution.
#pragma once

#include <string>
#include <vector>

#include "Picture.h"

namespace zqx::img::app {

/// The colour profile of a bitmap; empty when it has none.
std::vector<BYTE> iccProfileOf(FIBITMAP* bitmap);

/// Gives a bitmap that is about to be written what its source carries, as far as it still holds true, and warns of what
/// is left behind.
/// @param name the file to be written
void carryOver(const std::string& name, FREE_IMAGE_FORMAT format, FIBITMAP* bitmap, Form form, const Picture& original);

} // namespace zqx::img::app
