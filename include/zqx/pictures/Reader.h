/// @file
/// Reading picture files.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <zqx/pictures/Export.h>
#include <zqx/pictures/HeaderInfo.h>
#include <zqx/pictures/Limits.h>
#include <zqx/pictures/Picture.h>

namespace zqx::pictures {

/// Options for reading picture files.
/// @ingroup pictures
struct ReadOptions {
    Limits limits; ///< larger pictures and files are refused

    /// Whether to decode in a separate process, which a damaged or hostile file may crash without further harm. This
    /// needs the program zqx-img-decoder and a system that supports it. Unset means no.
    std::optional<bool> isolate;
    std::uint64_t decodeMemory = 0; ///< bytes that the separate process may use; 0 for half of the machine's memory
    double decodeSeconds = 60.0;    ///< seconds that the separate process may take

    /// Whether to refuse decoding if the system cannot confine the separate process, that is, keep it from opening
    /// files, using the network and reaching other processes. Otherwise that is a warning, given once.
    bool requireConfinement = true;

    /// Turns isolation on if it is unset and this system supports it, with as much confinement as the system offers.
    ZQX_PICTURES_EXPORT void isolateByDefault();
};

/// Reads a picture file: decodes it, turns it upright and converts it to the working layout that preserves most of it.
/// Of a file with several pictures the first is read. Warnings report what is lost (Diagnostics.h).
///
/// Any format for which canRead() holds will do. Colour profile, resolution and comments are kept; Exif, IPTC and XMP,
/// and the profile of PNG files, only if a MetadataCodec is installed.
///
/// Any number of threads may read at once.
/// @param name of the file, in UTF-8
/// @param options limits, and whether to decode in a separate process
/// @throws Error naming the file if it is missing, not a picture, damaged, beyond the limits, or of a kind that is not
/// supported
/// @throws std::bad_alloc
/// @ingroup pictures
ZQX_PICTURES_EXPORT Picture readPicture(const std::string& name, const ReadOptions& options = {});

/// Reads the header of a picture file without decoding any pixels. Whatever the file claims, this takes little time and
/// memory.
/// @param name of the file, in UTF-8
/// @throws Error naming the file if it is missing or not a picture
/// @ingroup pictures
ZQX_PICTURES_EXPORT HeaderInfo examinePicture(const std::string& name);

} // namespace zqx::pictures
