// Which Exif tags and XMP properties hold true for another file with another picture.
#pragma once

#include <optional>

#include "zqx/pictures/Metadata.h"
#include "zqx/pictures/metadata/exiv2/Exiv2Library.h"

namespace zqx::pictures {

/// The orientation that the tags ask for; upright where they ask for none.
int getOrientation(const Exiv2::ExifData& tags);

/// As the tags tell it; nothing where they tell none that makes sense.
std::optional<Resolution> getResolution(const Exiv2::ExifData& tags);

/// Removes what describes the file and not the picture (how its samples are laid out, thumbnails, blocks of other
/// standards), and what is no longer true once the picture is turned.
void keepDescription(Exiv2::ExifData& tags, int orientation);
void keepDescription(Exiv2::XmpData& properties, int orientation);

/// False for tags that every file needs and nobody would miss: sizes, resolution, version numbers.
bool tellSomething(const Exiv2::ExifData& tags);

/// Says how large the picture is now, where the tags say it at all.
void setSize(Exiv2::ExifData& tags, unsigned width, unsigned height);

/// Adds the tags to those of a TIFF file, which has orientation and resolution of its own.
void addToTiff(Exiv2::ExifData& file, const Exiv2::ExifData& tags);

} // namespace zqx::pictures
