/// @file
/// The pixel buffer that everything in the library reads and writes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include <zqx/img/Color.h>
#include <zqx/img/Export.h>

namespace zqx::img {

/// Bit mask of logical channels, whatever their byte order in memory. A grey format uses Red for its one channel.
/// @ingroup image
enum Channel : std::uint32_t {
    Red = 1,   ///< red, or grey
    Green = 2, ///< green
    Blue = 4,  ///< blue
    Alpha = 8, ///< alpha
};

/// A width x height grid of pixels in one of eleven formats, addressed by a byte pixel stride and a byte row stride.
///
/// Pixel (x, y) lies at data + x * bytePixelStride + y * byteRowStride. Row 0 is the top row of the picture in every
/// image that the library allocates; the view of a bitmap (FreeImage::asImage) is upside down: its row 0 is the bottom.
///
/// Ownership: only an image that allocated its own pixels frees them. A copy, a sub-image and an image over foreign
/// memory are views, which must not outlive the memory they look into. Nothing is reference-counted.
///
/// Bounds are never checked. A format value outside the enumeration makes every operation do nothing.
///
/// Thread-safety: one thread at a time per image (and per pixel memory). Operations run their rows in parallel and
/// return when all rows are done.
/// @ingroup image
class ZQX_IMG_API Image {
public:
    /// Pixel layouts. The numbers are exchanged with other programs and never change.
    ///
    /// Formats whose name starts with S hold 8-bit colour encoded with the pure power 1/2.2; the other 8-bit formats
    /// and alpha are linear. Float formats are linear and not limited to [0, 1].
    enum Format : std::uint32_t {
        GRAY8 = 0,   ///< one byte, linear
        SGRAY8 = 1,  ///< one byte, encoded
        GRAY32F = 2, ///< one float
        RGB8 = 3,    ///< bytes R, G, B, linear
        SRGB8 = 4,   ///< bytes R, G, B, encoded
        RGB32F = 5,  ///< floats R, G, B
        SBGR8 = 6,   ///< bytes B, G, R, encoded
        RGBA8 = 7,   ///< bytes R, G, B, A, linear
        SRGBA8 = 8,  ///< bytes R, G, B, A; colour encoded, alpha linear
        RGBA32F = 9, ///< floats R, G, B, A
        SBGRA8 = 10, ///< bytes B, G, R, A; colour encoded, alpha linear
    };

    /// An empty image: format GRAY8, no pixels, all sizes 0.
    Image();

    /// A view over foreign memory of at least height * byteRowStride bytes. Nothing is allocated or checked.
    /// @param data address of pixel (0, 0); stays the caller's
    /// @param width pixels in a row
    /// @param height rows
    /// @param format layout of the pixels, which lie packed in a row
    /// @param byteRowStride bytes from one row to the next; 0 means packed rows
    Image(void* data, std::size_t width, std::size_t height, Format format, std::size_t byteRowStride);

    /// A view over foreign memory that is only looked at, such as a source's. A copy of it is an image as any other,
    /// through which the memory can be written: hand the view itself on.
    /// @param data address of pixel (0, 0); stays the caller's
    /// @param width pixels in a row
    /// @param height rows
    /// @param format layout of the pixels, which lie packed in a row
    /// @param byteRowStride bytes from one row to the next; 0 means packed rows
    // NOLINTNEXTLINE(readability-const-return-type): what is constant stays so
    static const Image view(const void* data, std::size_t width, std::size_t height, Format format,
                            std::size_t byteRowStride = 0) {
        return Image(const_cast<void*>(data), width, height, format, byteRowStride);
    }

    /// Allocates an owned buffer whose rows start at multiples of rowAlignment bytes from its beginning.
    /// Pixels are not initialised; the padding at the end of each row is zero.
    /// @param width pixels in a row
    /// @param height rows
    /// @param format layout of the pixels
    /// @param rowAlignment at least 1; 1 gives packed rows
    /// @throws std::bad_alloc when the memory cannot be had or its size cannot be expressed
    Image(std::size_t width, std::size_t height, Format format, int rowAlignment);

    /// A view of the other image's pixels; it never owns them.
    Image(const Image& other);

    /// Copies all fields, ownership included, and frees nothing. Assigning from an owning image leaves two owners of
    /// one buffer: the caller sees to it that only one of them frees it.
    Image& operator=(const Image& other);

    /// Frees the pixels if this image owns them.
    virtual ~Image();

    /// The layout of the pixels.
    Format getFormat() const { return mFormat; }
    /// Pixels in a row.
    std::size_t getWidth() const { return mWidth; }
    /// Rows.
    std::size_t getHeight() const { return mHeight; }
    /// Bytes from one pixel to the next within a row.
    std::size_t getBytePixelStride() const { return mBytePixelStride; }
    /// Bytes from one row to the next.
    std::size_t getByteRowStride() const { return mByteRowStride; }
    /// Address of pixel (0, 0), or null.
    void* getDataPtr() const { return mData; }
    /// Address of pixel (0, y). Not checked.
    void* getRowPtr(std::size_t y) const { return static_cast<unsigned char*>(mData) + y * mByteRowStride; }
    /// Address of pixel (x, y). Not checked.
    void* getPixelPtr(std::size_t x, std::size_t y) const {
        return static_cast<unsigned char*>(mData) + x * mBytePixelStride + y * mByteRowStride;
    }
    /// True for the formats that store blue first: SBGR8 and SBGRA8.
    bool isBGR() const;
    /// True for GRAY32F, RGB32F and RGBA32F.
    bool hasFloatFormat() const;

    /// A view of the rectangle of w x h pixels at (x, y). Not checked against this image's size.
    ///
    /// The view keeps the strides but not the format: it reports GRAY8 whatever this image holds, so only its
    /// strides and addresses describe its pixels. To work on its pixels in their real format, make a view of
    /// getPixelPtr(x, y) with the foreign-memory constructor.
    Image getSubImage(std::size_t x, std::size_t y, std::size_t w, std::size_t h) const;

    /// A resampled copy of exactly width x height pixels, or an empty pointer where the image cannot scale:
    /// an Image cannot, the view of a bitmap can.
    virtual std::shared_ptr<Image> scale(std::size_t width, std::size_t height);

    /// Copies the pixels of an image of the same width, height and format; does nothing for any other.
    /// Pixels are taken to be packed within a row; row strides may differ.
    void copyFrom(const Image& src);

    /// Mirrors left and right in place. Pixels are taken to be packed within a row.
    void flipHorizontal();
    /// Mirrors top and bottom in place. Pixels are taken to be packed within a row.
    void flipVertical();

    /// A new image turned clockwise by 90 degrees: source pixel (x, y) goes to (height - 1 - y, x).
    /// Pixels are taken to be packed within a row. An unknown format gives an image with a pixel stride of 0.
    /// @throws std::bad_alloc
    std::shared_ptr<Image> rotate90() const;
    /// A new image turned by 180 degrees. See rotate90.
    std::shared_ptr<Image> rotate180() const;
    /// A new image turned counter-clockwise by 90 degrees: source pixel (x, y) goes to (y, width - 1 - x).
    std::shared_ptr<Image> rotate270() const;

    /// Inverts the channels of the mask in place, in linear light: c becomes 1 - c.
    ///
    /// Encoded bytes are decoded, inverted and encoded again, so an encoded mid-grey is not the complement of its
    /// byte. Bytes are limited to [0, 1] and truncated, floats are not limited. Alpha is linear in every format.
    void invert(Channel mask);

    /// A new packed image of the same size in the target format.
    ///
    /// Always converts, also into the own format. Encoding truncates: a linear value v becomes the byte
    /// trunc(255 v) or trunc(255 v^(1/2.2)) of v limited to [0, 1], NaN becomes 0. Float targets are not limited.
    /// Grey from linear colour is the luma 0.2126 R + 0.7152 G + 0.0722 B (ITU-R BT.709); grey from encoded colour
    /// weighs the stored values by 0.2989, 0.587 and 0.114 and decodes the sum. Alpha is dropped or becomes opaque
    /// where only one side has it; it is never multiplied into colour.
    /// An unknown target gives an image with a pixel stride of 0.
    /// @throws std::bad_alloc
    std::shared_ptr<Image> convertTo(Format target) const;

    /// convertTo the float format with the same channels: GRAY32F, RGB32F or RGBA32F. Empty for an unknown format.
    /// @throws std::bad_alloc
    std::shared_ptr<Image> convertToLinearFloat() const;

    /// Converts the source into this image's memory and format, by the rules of convertTo; equal formats are copied
    /// byte for byte. Does nothing unless width and height agree.
    ///
    /// The two may share memory only when both are 8-bit formats of the same layout; otherwise they must not overlap.
    void convertFrom(const Image& src);

protected:
    /// Gives up ownership: the pixels are no longer freed by this image.
    void disown() { mOwnsData = false; }
    /// Fields of a view, for derived classes that look into foreign memory.
    void setView(void* data, std::size_t width, std::size_t height, Format format, std::size_t bytePixelStride,
                 std::size_t byteRowStride);

private:
    friend class Filter; // hands pixel ownership over from a setter's argument

    Format mFormat = GRAY8;
    void* mData = nullptr;
    std::size_t mWidth = 0;
    std::size_t mHeight = 0;
    std::size_t mBytePixelStride = 0;
    std::size_t mByteRowStride = 0;
    bool mOwnsData = false;
};

/// Divides colour by alpha in place, for the formats with alpha; others are left alone.
///
/// Pixels with alpha up to 0.0001 keep their colour. 8-bit colour is divided as stored, without decoding it, limited
/// to [0, 1] and truncated; this is not the inverse of straight2PremultipliedAlpha for encoded formats.
/// @ingroup image
ZQX_IMG_API void premultiplied2StraightAlpha(Image& image);

/// Multiplies colour by alpha in place, for the formats with alpha; others are left alone.
///
/// Encoded colour is decoded first and encoded again after the product. Bytes are truncated.
/// @ingroup image
ZQX_IMG_API void straight2PremultipliedAlpha(Image& image);

} // namespace zqx::img
