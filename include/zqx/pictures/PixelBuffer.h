/// @file
/// The pixels of a picture together with their memory.
#pragma once

#include <cstddef>
#include <memory>

#include <zqx/img/Image.h>
#include <zqx/pictures/Export.h>
#include <zqx/pictures/SampleLayout.h>

namespace zqx::pictures {

/// An image, top row first, together with the owner of its memory: an allocation of its own, memory shared with another
/// process, or a decoder's bitmap.
///
/// It can be moved but not copied. Like img::Image, it must not be used by several threads at once.
/// @ingroup pictures
class ZQX_PICTURES_EXPORT PixelBuffer {
public:
    /// An empty buffer, without pixels.
    PixelBuffer() = default;

    /// Allocates pixels in the working format of a layout and sets all samples to 0: black and, with alpha,
    /// transparent. The row stride is a multiple of four bytes.
    /// @throws std::bad_alloc
    PixelBuffer(std::size_t width, std::size_t height, SampleLayout layout);

    /// Takes over an image that owns its pixels. @param image must not be empty
    explicit PixelBuffer(std::shared_ptr<img::Image> image);

    /// Wraps pixels in memory that something else owns.
    /// @param view of the pixels, top row first
    /// @param memory owner of the memory, kept alive for as long as the pixels are needed
    PixelBuffer(const img::Image& view, std::shared_ptr<void> memory);

    /// @{

    /// Move the pixels; the source is empty afterwards.
    PixelBuffer(PixelBuffer&& other) noexcept;
    PixelBuffer& operator=(PixelBuffer&& other) noexcept;
    /// @}
    PixelBuffer(const PixelBuffer&) = delete;
    PixelBuffer& operator=(const PixelBuffer&) = delete;
    ~PixelBuffer() = default;

    /// Whether there are no pixels.
    bool isEmpty() const { return mImage.getDataPtr() == nullptr; }

    /// The pixels, row 0 at the top. Valid for as long as this object owns them.
    const img::Image& image() const { return mImage; }
    /// The pixels, to be changed in place.
    img::Image& image() { return mImage; }

    /// Width in pixels.
    unsigned width() const { return static_cast<unsigned>(mImage.getWidth()); }
    /// Height in pixels.
    unsigned height() const { return static_cast<unsigned>(mImage.getHeight()); }
    /// The sample layout of the pixels.
    SampleLayout layout() const { return getLayout(mImage); }

    /// Releases the memory; the buffer is empty afterwards.
    void reset();

private:
    std::shared_ptr<void> mMemory;
    img::Image mImage; // a view
};

} // namespace zqx::pictures
