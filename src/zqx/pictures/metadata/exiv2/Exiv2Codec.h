// Exif, IPTC and XMP by Exiv2. A library of its own, because Exiv2 is under the GPL: only programs link it.
#pragma once

#include <string>

namespace zqx::pictures {

/// Makes Exiv2 the metadata codec of this process. To be called at the start of a program.
void installExiv2();

/// Of the library that is linked.
std::string exiv2Version();

} // namespace zqx::pictures
