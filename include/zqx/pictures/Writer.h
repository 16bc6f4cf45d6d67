/// @file
/// Writing picture files.
#pragma once

#include <string>
#include <vector>

#include <zqx/pictures/Export.h>
#include <zqx/pictures/Metadata.h>
#include <zqx/pictures/Picture.h>

namespace zqx::pictures {

/// Options for writing picture files.
/// @ingroup pictures
struct WriteOptions {
    int quality = 92;                    ///< 1 to 100, for JPEG and WebP
    std::vector<std::string> strippings; ///< metadata to leave out: "icc", "exif", "xmp", "iptc", "comments", "all"

    /// A copy of the metadata without what is to be left out. The resolution is always kept.
    ZQX_PICTURES_EXPORT Metadata stripped(const Metadata& metadata) const;
};

/// Writes a picture to a file. The extension selects the format; samples are stored in the layout nearest to
/// Picture::stored that the format supports, with the metadata that it can store. Warnings report what is lost.
///
/// The file appears complete under its name or not at all; an existing file is replaced only at the end.
///
/// Colour profile, resolution and comments are written; Exif, IPTC and XMP only if a MetadataCodec is installed.
///
/// Any number of threads may write at once, to different files.
/// @param picture in any format of img::Image; not changed
/// @param name of the file, in UTF-8
/// @param options quality, and the metadata to leave out
/// @throws UsageError if the extension belongs to no format that can be written
/// @throws Error naming the file if it cannot be encoded or stored
/// @throws std::bad_alloc
/// @ingroup pictures
ZQX_PICTURES_EXPORT void writePicture(const Picture& picture, const std::string& name,
                                      const WriteOptions& options = {});

} // namespace zqx::pictures
