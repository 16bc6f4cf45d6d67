/// @file
/// Pictures into files.
#pragma once

#include <string>
#include <vector>

#include <zqx/pictures/Export.h>
#include <zqx/pictures/Metadata.h>
#include <zqx/pictures/Picture.h>

namespace zqx::pictures {

/// How picture files are written.
/// @ingroup pictures
struct WriteOptions {
    int quality = 92;                    ///< 1 to 100, for the formats that have one: JPEG and WebP
    std::vector<std::string> strippings; ///< metadata to leave out: "icc", "exif", "xmp", "iptc", "comments", "all"

    /// A copy without the classes to leave out. The resolution always stays.
    ZQX_PICTURES_EXPORT Metadata stripped(const Metadata& metadata) const;
};

/// Writes a picture to a file in the format that its name's extension stands for, in the sample layout nearest to
/// Picture::stored that the format holds, with the metadata that it can carry. What is lost is told by a warning.
///
/// The file appears whole under its name or not at all; one that is there before is replaced then.
///
/// Colour profile, resolution and comments are written; Exif, IPTC and XMP only where a MetadataCodec is installed.
///
/// Any number of threads may write at once, to different files.
/// @param picture in any of the formats of img::Image; not changed
/// @param name UTF-8
/// @param options quality, and what to leave out
/// @throws UsageError when no format that can be written has the extension
/// @throws Error naming the file when it cannot be encoded or stored
/// @throws std::bad_alloc
/// @ingroup pictures
ZQX_PICTURES_EXPORT void writePicture(const Picture& picture, const std::string& name,
                                      const WriteOptions& options = {});

} // namespace zqx::pictures
