/// @file
/// The interface of the bitmap component.
#pragma once

#include <cstdint>

#include <qutil/Color.h>
#include <qutil/IIOStream.h>
#include <tov/IOutputStream.h>
#include <tov/IUnknown.h>
#include <tov/Result.h>
#include <tov/Sequence.h>

namespace zqx::qfreeimage {

/// How a bitmap's pixels mean colour, in the order of FREE_IMAGE_COLOR_TYPE.
/// @ingroup components
enum ColorType : std::int32_t {
    MIN_IS_WHITE = 0, ///< grey, 0 being white
    MIN_IS_BLACK = 1, ///< grey, 0 being black
    RGB = 2,          ///< colour without alpha
    PALETTE = 3,      ///< indices into a palette
    RGB_ALPHA = 4,    ///< colour with alpha
    CMYK = 5,         ///< printing inks
};

/// A bitmap that is loaded from and saved to files and streams, read and written by pixel, and transformed whole.
///
/// Every method returns a result code (tov/Result.h). Checks run in this order unless a method says otherwise: null
/// out-pointer tov::INVALID_ARGUMENT, no bitmap loaded tov::NOT_READY, the image library refused tov::FAILURE. Null
/// pointers and failures are logged; an exception inside a method becomes tov::UNEXPECTED.
///
/// Formats are FREE_IMAGE_FORMAT numbers (-1: detect), types FREE_IMAGE_TYPE numbers, filters FREE_IMAGE_FILTER
/// numbers, flags FreeImage's load and save flags. File names are UTF-8. Methods that hand out a bitmap make a new
/// component with one reference, owned by the caller.
///
/// A bitmap that was loaded with FIF_LOAD_NOPIXELS has a size and no pixels: what reads or writes pixels is
/// tov::FAILURE, samples are zeros, there is no hash (tov::NOT_READY), and the image view is empty.
///
/// Coordinates: x from the left, y from the top. Scan lines are counted from the bottom.
///
/// Thread-safety: references on any thread, everything else one thread at a time per bitmap.
/// @ingroup components
class IFreeImage : public tov::IUnknown {
public:
    /// The interface's identifier.
    static constexpr const char* IID = "IDL:zqx/qfreeimage/IFreeImage:1.0";

    /// Loads a file. With format -1 its content decides, then its name. A format that is unknown or cannot be read
    /// (tov::FAILURE) leaves the present bitmap; a file that does not decode leaves none.
    virtual tov::Result load(int format, const char* path, int flags) = 0;
    /// Loads from a stream, all of it; with format -1 its content decides. Judged by whether a bitmap is held
    /// afterwards: a format that is known but cannot be read keeps, and reports, the bitmap there was.
    virtual tov::Result loadFromStream(int format, qutil::IIOStream* pStream, int flags) = 0;
    /// Saves to a file. tov::NOT_SUPPORTED when the format (-1 is none) cannot hold this bitmap. The path is checked
    /// before the bitmap. Not guarded and not logged.
    virtual tov::Result save(int format, const char* path, int flags) = 0;
    /// Saves to a stream in one write, whose result code is passed on. A null stream is not logged.
    virtual tov::Result saveToStream(tov::IOutputStream* pStream, int format, int flags) = 0;
    /// Replaces the bitmap by a new one of zeros.
    virtual tov::Result allocate(int type, int width, int height, int bitsPerPixel) = 0;
    /// Frees the bitmap, if any. Always successful.
    virtual tov::Result unload() = 0;
    /// Pixels in a row.
    virtual tov::Result getWidth(int* pWidth) = 0;
    /// Rows.
    virtual tov::Result getHeight(int* pHeight) = 0;
    /// Bits of one pixel, all channels together.
    virtual tov::Result getBitsPerPixel(int* pBitsPerPixel) = 0;
    /// The FREE_IMAGE_TYPE.
    virtual tov::Result getDataType(int* pType) = 0;

    /// One pixel as floats: bytes / 255 for 24 and 32 bit bitmaps, floats as stored for RGBF and RGBAF; alpha 1 where
    /// there is none. tov::NOT_SUPPORTED for other layouts. Pointers and coordinates are not checked.
    virtual tov::Result getPixelF(int x, int y, float* r, float* g, float* b, float* a) = 0;
    /// Writes one pixel in the layouts of getPixelF. Above 1 a byte becomes 255; below 0 it is deliberately not
    /// limited and wraps (-0.5 gives 129).
    virtual tov::Result setPixelF(int x, int y, float r, float g, float b, float a) = 0;
    /// Turns counter-clockwise by an angle in degrees.
    virtual tov::Result rotate(double angle, IFreeImage** pOut) = 0;
    /// Resamples to width x height. Sizes below 1 are tov::INVALID_ARGUMENT before anything else is checked.
    virtual tov::Result rescale(int width, int height, int filter, IFreeImage** pOut) = 0;
    /// Address of scan line `line`, 0 being the bottom one, inside the bitmap. Checks the bitmap before the pointer.
    virtual tov::Result getScanline(int line, void** pLine) = 0;
    /// Samples at (u, v) in [0, 1]: mode 0 the nearest pixel, other modes bilinear. Neighbours beyond the right and
    /// bottom edge wrap to the opposite edge. Always successful; an unsupported layout or an empty bitmap gives zeros.
    virtual tov::Result sampleF(float u, float v, int mode, float* r, float* g, float* b, float* a) = 0;
    /// Writes a scan line (0 being the bottom one) from 4 floats per pixel, in the layouts of getPixelF. The number of
    /// values is the caller's business for byte and RGBF bitmaps (4 per pixel); RGBAF bitmaps take as many as given.
    virtual tov::Result setScanlineF(int line, const tov::Sequence<float>& values) = 0;
    /// The rectangle from (left, top) to before (right, bottom).
    virtual tov::Result copy(int left, int top, int right, int bottom, IFreeImage** pOut) = 0;
    /// Pastes another bitmap of this module at (left, top). alpha 0 to 255 blends, above that copies.
    /// A null or foreign source, or one without bitmap, is tov::INVALID_ARGUMENT.
    virtual tov::Result paste(IFreeImage* pSource, int left, int top, int alpha) = 0;
    /// Stores an XMP packet with the bitmap; null counts as empty. tov::FAILURE when there is no bitmap.
    virtual tov::Result setMetaData(const char* pXmp) = 0;
    /// Composes over another bitmap of this module; refuses what paste refuses.
    virtual tov::Result compositeBackgroundImage(IFreeImage* pBackground, IFreeImage** pOut) = 0;
    /// Composes over the background colour stored in the file.
    virtual tov::Result composite(IFreeImage** pOut) = 0;
    /// Composes over a colour of components in [0, 1].
    virtual tov::Result compositeBackgroundColor(const qutil::EColor4f& color, IFreeImage** pOut) = 0;
    /// Replaces the bitmap by the pixels of a GDI bitmap handle.
    virtual tov::Result convertFromHBitmap(void* pHandle) = 0;
    /// Makes a GDI bitmap of the pixels, owned by the caller. Successful with a null handle when GDI refuses.
    virtual tov::Result convertToHBitmap(void** pHandle) = 0;
    /// A hash over all scan lines with their padding. The pointer is not checked.
    virtual tov::Result getHash(int* pHash) = 0;
    /// Converts to bytes blue, green, red.
    virtual tov::Result convertTo24Bits(IFreeImage** pOut) = 0;
    /// Converts to bytes blue, green, red, alpha; opaque where there was no transparency.
    virtual tov::Result convertTo32Bits(IFreeImage** pOut) = 0;
    /// 256 colours in [0, 1], those that the bitmap does not have being black; freed by the caller with tov::tovFree.
    /// Returns 1, and writes nothing, when there is no palette.
    virtual tov::Result getPalette(tov::Sequence<qutil::EColor3f>* pPalette) = 0;
    /// How the pixels mean colour.
    virtual tov::Result getColorType(ColorType* pType) = 0;
    /// Multiplies colour by alpha in place (32 bit bitmaps).
    virtual tov::Result preMultiplyWithAlpha() = 0;
    /// The palette index that is transparent, or -1. The pointer is not checked.
    virtual tov::Result getTransparentIndex(int* pIndex) = 0;
    /// One pixel in the range 0 to 255, alpha last. Written even when the library refuses.
    virtual tov::Result getPixelColor(int x, int y, qutil::EColor4f* pColor) = 0;
    /// Converts to 8-bit grey, scaling linearly when asked. The pointer is not checked.
    virtual tov::Result convertToStandardType(IFreeImage** pOut, int scaleLinear) = 0;
    /// Converts to a FREE_IMAGE_TYPE. The pointer is not checked.
    virtual tov::Result convertToType(IFreeImage** pOut, int type, int scaleLinear) = 0;
    /// Bytes from one scan line to the next. Checks the bitmap before the pointer.
    virtual tov::Result getPitch(int* pPitch) = 0;

protected:
    /// @{

    /// For components alone: they end through release().
    IFreeImage() = default;
    IFreeImage(const IFreeImage&) = default;
    IFreeImage& operator=(const IFreeImage&) = default;
    ~IFreeImage() = default;
    /// @}
};

/// The interface with the plain slots of its base implemented.
/// @ingroup components
class IFreeImage_Adapter : public tov::UnknownAdapter<IFreeImage> {
protected:
    /// @{

    /// For components alone: they end through release().
    IFreeImage_Adapter() = default;
    IFreeImage_Adapter(const IFreeImage_Adapter&) = default;
    IFreeImage_Adapter& operator=(const IFreeImage_Adapter&) = default;
    ~IFreeImage_Adapter() = default;
    /// @}
};

} // namespace zqx::qfreeimage
