/// @file
/// The formats of picture files, by content, by name, and what each can hold.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <zqx/pictures/Export.h>
#include <zqx/pictures/SampleLayout.h>

namespace zqx::pictures {

/// The formats of picture files. All functions about them may be called by any thread.
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
    RAW,     ///< the raw samples of a camera
    SGI,     ///< Silicon Graphics
    TARGA,   ///< Truevision
    TIFF,    ///< Tagged Image File Format
    WBMP,    ///< wireless bitmap
    WEBP,    ///< WebP
    XBM,     ///< X11 bitmap
    XPM,     ///< X11 pixmap
    UNKNOWN, ///< none of these
};

/// How many formats there are, without UNKNOWN.
/// @ingroup pictures
constexpr std::size_t FILE_FORMAT_COUNT = static_cast<std::size_t>(FileFormat::UNKNOWN);

/// A short name such as "PNG"; "unknown" for none.
/// @ingroup pictures
ZQX_PICTURES_EXPORT const char* nameOf(FileFormat format);

/// A longer name for people, "Portable Network Graphics"; "unknown" for none.
/// @ingroup pictures
ZQX_PICTURES_EXPORT const char* descriptionOf(FileFormat format);

/// The extensions of file names that stand for a format, in lower case and without the dot.
/// @ingroup pictures
ZQX_PICTURES_EXPORT std::vector<std::string> extensionsOf(FileFormat format);

/// True for formats whose files this library decodes.
/// @ingroup pictures
ZQX_PICTURES_EXPORT bool canRead(FileFormat format);

/// True for formats whose files this library encodes.
/// @ingroup pictures
ZQX_PICTURES_EXPORT bool canWrite(FileFormat format);

/// True when files of the format are written in this layout without any conversion.
/// @ingroup pictures
ZQX_PICTURES_EXPORT bool holds(FileFormat format, SampleLayout layout);

/// True for formats that can carry an ICC profile.
/// @ingroup pictures
ZQX_PICTURES_EXPORT bool holdsColorProfile(FileFormat format);

/// The format that a file name's extension stands for; UNKNOWN for none.
/// @param name UTF-8; the file need not exist
/// @ingroup pictures
ZQX_PICTURES_EXPORT FileFormat formatOfName(const std::string& name);

/// The format of a file to be written, by its extension.
/// @param name UTF-8
/// @throws UsageError when no format has the extension, or none that can be written
/// @ingroup pictures
ZQX_PICTURES_EXPORT FileFormat outputFormat(const std::string& name);

/// The layout nearest to the wanted one that files of the format hold. To lose least, ask for what the source file had
/// (Picture::stored), not for what it has in memory.
/// @param name of the file to be written, for the message
/// @param format of that file
/// @param wanted the layout that would lose nothing
/// @throws Error when the format holds none
/// @ingroup pictures
ZQX_PICTURES_EXPORT SampleLayout chooseLayout(const std::string& name, FileFormat format, SampleLayout wanted);

} // namespace zqx::pictures
