/// @file
/// Picture files into pictures.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <zqx/pictures/Export.h>
#include <zqx/pictures/HeaderInfo.h>
#include <zqx/pictures/Limits.h>
#include <zqx/pictures/Picture.h>

namespace zqx::pictures {

/// How picture files are read.
/// @ingroup pictures
struct ReadOptions {
    Limits limits; ///< what a file may ask for before it is refused

    /// Decode in a process of its own, which a hostile file may bring down without harm. It needs the program
    /// zqx-img-decoder and a system that has processes of this kind. No, where it is not set.
    std::optional<bool> isolate;
    std::uint64_t decodeMemory = 0; ///< bytes that such a process may use; 0 for half of the machine's
    double decodeSeconds = 60.0;    ///< seconds that it may take

    /// Refuse to decode where the system cannot confine such a process: keep it from files, from the network and from
    /// other processes. Otherwise that is a warning, once.
    bool requireConfinement = true;

    /// Isolates decoding where the user did not decide, if this system can, and as well as it can.
    ZQX_PICTURES_EXPORT void isolateByDefault();
};

/// Reads a picture file: decodes it, turns it upright and brings it into the form in memory that keeps most of it. Of a
/// file with several pictures the first is read. What is lost is told by a warning (Diagnostics.h).
///
/// All of the formats of FileFormat.h are read. Colour profile, resolution and comments are kept; Exif, IPTC and XMP,
/// and the profile of PNG files, only where a MetadataCodec is installed.
///
/// Any number of threads may read at once.
/// @param name UTF-8
/// @param options limits, and who decodes
/// @throws Error naming the file when it is missing, no picture, damaged, beyond the limits or of a kind that cannot be
/// worked with
/// @throws std::bad_alloc
/// @ingroup pictures
ZQX_PICTURES_EXPORT Picture readPicture(const std::string& name, const ReadOptions& options = {});

/// Reads what the header of a picture file tells, without decoding pixels. It costs time and memory for a few
/// kilobytes, whatever the file says.
/// @param name UTF-8
/// @throws Error naming the file when it is missing or no picture
/// @ingroup pictures
ZQX_PICTURES_EXPORT HeaderInfo examinePicture(const std::string& name);

} // namespace zqx::pictures
