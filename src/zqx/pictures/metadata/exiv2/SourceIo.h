// A file that is open already, as Exiv2 reads files.
#pragma once

#include <memory>

#include "zqx/pictures/ByteSource.h"
#include "zqx/pictures/metadata/exiv2/Exiv2Library.h"

namespace zqx::pictures {

/// A file for Exiv2, which never opens one by its name: that may mean another file by now, and Exiv2 takes some names
/// for addresses in the network.
/// @param source has to live as long as the image
/// @throws Exiv2's exceptions when it does not know the format
std::unique_ptr<Exiv2::Image> openImage(ByteSource& source);

} // namespace zqx::pictures
