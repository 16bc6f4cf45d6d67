/// @file
/// The pixels of a picture and the memory they lie in.
#pragma once

#include <cstddef>
#include <memory>

#include <zqx/img/Image.h>
#include <zqx/pictures/Export.h>
#include <zqx/pictures/SampleLayout.h>

namespace zqx::pictures {

/// An image, top row first, together with whatever keeps its memory alive: an allocation of its own, memory shared with
/// another process, or a decoder's bitmap.
///
/// It can be moved, not copied. One thread at a time, as for img::Image.
/// @ingroup pictures
class ZQX_PICTURES_EXPORT PixelBuffer {
public:
    /// No pixels.
    PixelBuffer() = default;

    /// Allocates black (transparent) pixels in the working format of a layout; rows begin at multiples of four bytes.
    /// @throws std::bad_alloc
    PixelBuffer(std::size_t width, std::size_t height, SampleLayout layout);

    /// Takes the pixels of an image that owns them. @param image not empty
    explicit PixelBuffer(std::shared_ptr<img::Image> image);

    /// Looks into memory that belongs to somebody else.
    /// @param view its pixels, top row first
    /// @param memory whatever has to live as long as they do
    PixelBuffer(const img::Image& view, std::shared_ptr<void> memory);

    /// @{

    /// The source has no pixels afterwards.
    PixelBuffer(PixelBuffer&& other) noexcept;
    PixelBuffer& operator=(PixelBuffer&& other) noexcept;
    /// @}
    PixelBuffer(const PixelBuffer&) = delete;
    PixelBuffer& operator=(const PixelBuffer&) = delete;
    ~PixelBuffer() = default;

    /// True where there are no pixels.
    bool isEmpty() const { return mImage.getDataPtr() == nullptr; }

    /// The pixels, row 0 on top. Only valid as long as this object has them.
    const img::Image& image() const { return mImage; }
    /// The same, for operations that change pixels in place.
    img::Image& image() { return mImage; }

    /// Pixels in a row.
    unsigned width() const { return static_cast<unsigned>(mImage.getWidth()); }
    /// Rows.
    unsigned height() const { return static_cast<unsigned>(mImage.getHeight()); }
    /// What a pixel is.
    SampleLayout layout() const { return layoutOf(mImage); }

    /// Gives the memory up.
    void reset();

private:
    std::shared_ptr<void> mMemory;
    img::Image mImage; // a view
};

} // namespace zqx::pictures
