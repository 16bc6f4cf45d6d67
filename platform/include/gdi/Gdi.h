/// @file
/// The few calls of Windows' graphics interface that bitmaps are exchanged with: the system's own on Windows, elsewhere
/// the same contracts over bitmaps in memory.
#pragma once

#if defined(_WIN32)
#if !defined(NOMINMAX)
#define NOMINMAX
#endif
#if !defined(WIN32_LEAN_AND_MEAN)
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

namespace gdi {

using ::BITMAP;
using ::HBITMAP;
using ::HDC;

using ::CreateDIBSection;
using ::DeleteObject;
using ::GetDC;
using ::GetDIBits;
using ::GetObjectA;
using ::ReleaseDC;

/// Palette entries are colours; the system's own name for it is a macro.
inline constexpr UINT RGB_COLORS = DIB_RGB_COLORS;

} // namespace gdi

#else

#include <cstdint>

#include <tov/Export.h>

namespace gdi {

// All functions are thread-safe. Handles are numbers that are looked up, never addresses: one that is null, foreign or
// deleted makes the call fail. A header is 40 bytes of bitmap information, with the palette (blue, green, red, 0)
// behind it where there is one. Understood are uncompressed bottom-up bitmaps of 8, 24 and 32 bits per pixel, scan
// lines padded to four bytes.

/// A bitmap: a number, not an address.
using HBITMAP = struct BitmapHandle*;
/// A device context: a number, not an address.
using HDC = struct DeviceHandle*;

/// Palette entries are colours.
inline constexpr unsigned int RGB_COLORS = 0;

/// What GetObjectA tells of a bitmap.
struct BITMAP {
    std::int32_t bmType;       ///< always 0
    std::int32_t bmWidth;      ///< pixels
    std::int32_t bmHeight;     ///< rows
    std::int32_t bmWidthBytes; ///< bytes from one scan line to the next
    std::uint16_t bmPlanes;    ///< always 1
    std::uint16_t bmBitsPixel; ///< 8, 24 or 32
    void* bmBits;              ///< the bottom scan line; lives as long as the bitmap
};

/// Describes a bitmap. @param handle the bitmap. @param size of the record in bytes. @param pOut a BITMAP; null asks
/// for the size needed.
/// @return the number of bytes stored or needed; 0 on failure.
ZQX_PLATFORM_API int GetObjectA(void* handle, int size, void* pOut);

/// A device context of the screen, to be given back with ReleaseDC; null for any window but null, as there is none.
ZQX_PLATFORM_API HDC GetDC(void* window);

/// @return 1, or 0 for a context that is not in use.
ZQX_PLATFORM_API int ReleaseDC(void* window, HDC context);

/// Copies scan lines out of a bitmap.
/// @param context a live device context. @param bitmap the bitmap.
/// @param start first line, 0 being the bottom one. @param lines how many; cut at the top.
/// @param pBits receives them. @param pInfo header that says what is wanted: the bitmap's width and height, 24 or 32
/// bits (any bitmap; a new alpha byte is 0), or 8 bits from an 8-bit bitmap. Its colour counts become 0, and for 8
/// bits it needs room for 256 palette entries behind it, which are filled in.
/// @param usage RGB_COLORS.
/// @return the number of lines copied; 0 on failure, then nothing is changed.
ZQX_PLATFORM_API int GetDIBits(HDC context, HBITMAP bitmap, unsigned int start, unsigned int lines, void* pBits,
                               void* pInfo, unsigned int usage);

/// Makes a bitmap of zeros. @param context not looked at.
/// @param pInfo header and palette. @param usage RGB_COLORS. @param pBits receives the address of its bits, which
/// live as long as the bitmap; may be null. @param section must be null: there is no shared memory here.
/// @param offset not looked at.
/// @return the bitmap, to be freed with DeleteObject; null, and null bits, for a header that is not understood.
ZQX_PLATFORM_API HBITMAP CreateDIBSection(HDC context, const void* pInfo, unsigned int usage, void** pBits,
                                          void* section, unsigned int offset);

/// @return 1, or 0 for a handle that is not a live bitmap's.
ZQX_PLATFORM_API int DeleteObject(void* handle);

} // namespace gdi

#endif
