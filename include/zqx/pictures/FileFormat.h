/// @file
/// The picture file formats: how they are recognised, and what each of them can store.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <zqx/pictures/Export.h>
#include <zqx/pictures/SampleLayout.h>

namespace zqx::pictures {

/// The picture file formats. The functions about them may be called by any thread.
/// @ingroup pictures
enum class FileFormat : std::uint8_t {
    BMP,     ///< Windows bitmap
    CUT,     ///< Dr. Halo
    DDS,     ///< DirectDraw surface
    EXR,     ///< OpenEXR
    FAXG3,   ///< raw fax
    GIF,     ///< Graphics Interchange Format
    HDR,     ///< Radiance
    ICO,     ///< Windows icon
    IFF,     ///< Interchange File Format, "ILBM"
    J2K,     ///< JPEG 2000 codestream
    JNG,     ///< JPEG Network Graphics
    JP2,     ///< JPEG 2000
    JPEG,    ///< JPEG, JFIF, Exif
    JXR,     ///< JPEG XR
    KOALA,   ///< Commodore 64
    MNG,     ///< Multiple-image Network Graphics
    PBM,     ///< portable bitmap, as text
    PBMRAW,  ///< portable bitmap
    PCD,     ///< Photo CD
    PCX,     ///< PC Paintbrush
    PFM,     ///< portable float map
    PGM,     ///< portable grey map, as text
    PGMRAW,  ///< portable grey map
    PICT,    ///< QuickDraw picture
    PNG,     ///< Portable Network Graphics
    PPM,     ///< portable pixel map, as text
    PPMRAW,  ///< portable pixel map
    PSD,     ///< Photoshop
    RAS,     ///< Sun raster
    RAW,     ///< camera raw
    SGI,     ///< Silicon Graphics
    TARGA,   ///< Truevision
    TIFF,    ///< Tagged Image File Format
    WBMP,    ///< wireless bitmap
    WEBP,    ///< WebP
    XBM,     ///< X11 bitmap
    XPM,     ///< X11 pixmap
    UNKNOWN, ///< none of these
};

/// The number of formats, not counting UNKNOWN.
/// @ingroup pictures
constexpr std::size_t FILE_FORMAT_COUNT = static_cast<std::size_t>(FileFormat::UNKNOWN);

/// The short name of a format, such as "PNG"; "unknown" for UNKNOWN.
/// @ingroup pictures
ZQX_PICTURES_EXPORT const char* getName(FileFormat format);

/// The full name of a format, such as "Portable Network Graphics"; "unknown" for UNKNOWN.
/// @ingroup pictures
ZQX_PICTURES_EXPORT const char* getDescription(FileFormat format);

/// The file name extensions of a format, in lower case and without the dot.
/// @ingroup pictures
ZQX_PICTURES_EXPORT std::vector<std::string> getExtensions(FileFormat format);

/// Whether this library can decode files of a format.
/// @ingroup pictures
ZQX_PICTURES_EXPORT bool canRead(FileFormat format);

/// Whether this library can encode files of a format.
/// @ingroup pictures
ZQX_PICTURES_EXPORT bool canWrite(FileFormat format);

/// Whether files of the format can store samples of this layout without conversion.
/// @ingroup pictures
ZQX_PICTURES_EXPORT bool holds(FileFormat format, SampleLayout layout);

/// Whether files of the format can store an ICC profile.
/// @ingroup pictures
ZQX_PICTURES_EXPORT bool holdsColorProfile(FileFormat format);

/// The format that the extension of a file name stands for; UNKNOWN if there is none.
/// @param name of a file, in UTF-8; the file need not exist
/// @ingroup pictures
ZQX_PICTURES_EXPORT FileFormat formatOfName(const std::string& name);

/// The format in which to write a file, by its extension.
/// @param name of the file, in UTF-8
/// @throws UsageError if the extension belongs to no format, or to one that cannot be written
/// @ingroup pictures
ZQX_PICTURES_EXPORT FileFormat outputFormat(const std::string& name);

/// The layout in which a file of this format loses least of a picture. Ask for the layout that the picture's source
/// file had (Picture::stored) rather than for the one that it has in memory.
/// @param name of the file to be written, for error messages
/// @param format of that file
/// @param wanted the layout that would lose nothing
/// @throws Error if the format can store no suitable layout
/// @ingroup pictures
ZQX_PICTURES_EXPORT SampleLayout chooseLayout(const std::string& name, FileFormat format, SampleLayout wanted);

} // namespace zqx::pictures
