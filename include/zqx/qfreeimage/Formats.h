/// @file
/// The numbers that bitmap components take and answer, for hosts that have no header of the FreeImage library.
#pragma once

#include <cstdint>

namespace zqx::qfreeimage {

/// File formats, as FREE_IMAGE_FORMAT counts them.
/// @ingroup components
enum FileFormat : std::int32_t {
    FORMAT_DETECT = -1,     ///< found by content, then by name; for loading
    FORMAT_BMP = 0,         ///< Windows bitmap
    FORMAT_ICO = 1,         ///< Windows icon
    FORMAT_JPEG = 2,        ///< JPEG
    FORMAT_JNG = 3,         ///< JPEG Network Graphics
    FORMAT_KOALA = 4,       ///< Commodore 64 Koala
    FORMAT_LBM = 5,         ///< Amiga IFF
    FORMAT_MNG = 6,         ///< Multiple-image Network Graphics
    FORMAT_PBM = 7,         ///< portable bitmap, as text
    FORMAT_PBM_BINARY = 8,  ///< portable bitmap
    FORMAT_PCD = 9,         ///< Kodak Photo CD
    FORMAT_PCX = 10,        ///< Zsoft Paintbrush
    FORMAT_PGM = 11,        ///< portable greymap, as text
    FORMAT_PGM_BINARY = 12, ///< portable greymap
    FORMAT_PNG = 13,        ///< Portable Network Graphics
    FORMAT_PPM = 14,        ///< portable pixelmap, as text
    FORMAT_PPM_BINARY = 15, ///< portable pixelmap
    FORMAT_RAS = 16,        ///< Sun raster
    FORMAT_TARGA = 17,      ///< Truevision Targa
    FORMAT_TIFF = 18,       ///< Tagged Image File Format
    FORMAT_WBMP = 19,       ///< wireless bitmap
    FORMAT_PSD = 20,        ///< Photoshop
    FORMAT_CUT = 21,        ///< Dr. Halo
    FORMAT_XBM = 22,        ///< X11 bitmap
    FORMAT_XPM = 23,        ///< X11 pixmap
    FORMAT_DDS = 24,        ///< DirectX surface
    FORMAT_GIF = 25,        ///< Graphics Interchange Format
    FORMAT_HDR = 26,        ///< Radiance RGBE
    FORMAT_FAX_G3 = 27,     ///< raw fax of group 3
    FORMAT_SGI = 28,        ///< Silicon Graphics
    FORMAT_EXR = 29,        ///< OpenEXR
    FORMAT_JPEG_2000 = 30,  ///< JPEG 2000 codestream
    FORMAT_JP2 = 31,        ///< JPEG 2000 file
    FORMAT_PFM = 32,        ///< portable floatmap
    FORMAT_PICT = 33,       ///< Macintosh PICT
    FORMAT_CAMERA_RAW = 34, ///< what cameras write
    FORMAT_WEBP = 35,       ///< WebP
    FORMAT_JPEG_XR = 36,    ///< JPEG XR
};

/// What a bitmap's pixels are made of, as FREE_IMAGE_TYPE counts them.
/// @ingroup components
enum DataType : std::int32_t {
    TYPE_UNKNOWN = 0, ///< none
    TYPE_BITMAP = 1,  ///< standard bitmaps of 1, 4, 8, 16, 24 or 32 bits
    TYPE_UINT16 = 2,  ///< one unsigned number of 16 bits
    TYPE_INT16 = 3,   ///< one signed number of 16 bits
    TYPE_UINT32 = 4,  ///< one unsigned number of 32 bits
    TYPE_INT32 = 5,   ///< one signed number of 32 bits
    TYPE_FLOAT = 6,   ///< one float
    TYPE_DOUBLE = 7,  ///< one double
    TYPE_COMPLEX = 8, ///< two doubles
    TYPE_RGB16 = 9,   ///< three unsigned numbers of 16 bits
    TYPE_RGBA16 = 10, ///< four unsigned numbers of 16 bits
    TYPE_RGBF = 11,   ///< three floats
    TYPE_RGBAF = 12,  ///< four floats
};

/// How IFreeImage::rescale resamples, as FREE_IMAGE_FILTER counts them.
/// @ingroup components
enum RescaleFilter : std::int32_t {
    RESCALE_BOX = 0,         ///< nearest neighbours, averaged
    RESCALE_BICUBIC = 1,     ///< cubic of Mitchell and Netravali
    RESCALE_BILINEAR = 2,    ///< linear between neighbours
    RESCALE_BSPLINE = 3,     ///< cubic B-spline, soft
    RESCALE_CATMULL_ROM = 4, ///< cubic of Catmull and Rom
    RESCALE_LANCZOS = 5,     ///< windowed sinc of three lobes, sharp
};

/// Flags of loading and saving, for the formats that they name; those of one format may be combined.
/// @ingroup components
enum FileFlag : std::int32_t {
    LOAD_WITHOUT_PIXELS = 0x8000, ///< size and metadata alone, where the format can
    LOAD_JPEG_TURNED = 0x0008,    ///< upright, by what the Exif data say

    SAVE_BMP_RUN_LENGTHS = 0x0001,   ///< compressed
    SAVE_EXR_FLOAT = 0x0001,         ///< floats instead of halves
    SAVE_EXR_UNCOMPRESSED = 0x0002,  ///< fast and large
    SAVE_EXR_ZIP = 0x0004,           ///< zlib, in blocks of 16 lines
    SAVE_EXR_PIZ = 0x0008,           ///< wavelets, good for noise
    SAVE_JPEG_SUPERB = 0x0080,       ///< quality 100
    SAVE_JPEG_GOOD = 0x0100,         ///< quality 75, which is what is done without a flag
    SAVE_JPEG_NORMAL = 0x0200,       ///< quality 50
    SAVE_JPEG_AVERAGE = 0x0400,      ///< quality 25
    SAVE_JPEG_BAD = 0x0800,          ///< quality 10
    SAVE_JPEG_PROGRESSIVE = 0x2000,  ///< coarse to fine
    SAVE_JPEG_FULL_COLOR = 0x10000,  ///< colour at the full resolution (4:4:4)
    SAVE_JPEG_OPTIMIZED = 0x20000,   ///< code tables made for the picture
    SAVE_PNG_FASTEST = 0x0001,       ///< least compression
    SAVE_PNG_SMALLEST = 0x0009,      ///< most compression
    SAVE_PNG_UNCOMPRESSED = 0x0100,  ///< none
    SAVE_PNG_INTERLACED = 0x0200,    ///< coarse to fine
    SAVE_TARGA_RUN_LENGTHS = 0x0002, ///< compressed
    SAVE_TIFF_PACKBITS = 0x0100,     ///< run lengths
    SAVE_TIFF_DEFLATE = 0x0400,      ///< zlib, as most programs read it
    SAVE_TIFF_UNCOMPRESSED = 0x0800, ///< none
    SAVE_TIFF_LZW = 0x4000,          ///< LZW
    SAVE_WEBP_LOSSLESS = 0x0100,     ///< nothing is lost
    SAVE_JPEG_XR_LOSSLESS = 0x0064,  ///< nothing is lost
};

} // namespace zqx::qfreeimage
