// The image class: memory and addressing. What touches pixels is in kernels/.
#include <zqx/img/Image.h>

#include <cstring>
#include <limits>
#include <new>

#include "kernels/Rows.h"
#include "kernels/geometry/Turn.h"
#include "kernels/samples/Channels.h"
#include "kernels/samples/Convert.h"
#include "kernels/samples/PixelFormat.h"
#include "system/LargePages.h"

namespace zqx::img {

namespace {

/// Products of sizes that cannot be expressed are as impossible to allocate as those that are merely too large.
std::size_t checkedProduct(std::size_t a, std::size_t b) {
    if (b != 0 && a > std::numeric_limits<std::size_t>::max() / b) {
        throw std::bad_alloc();
    }
    return a * b;
}

std::size_t checkedSum(std::size_t a, std::size_t b) {
    if (a > std::numeric_limits<std::size_t>::max() - b) {
        throw std::bad_alloc();
    }
    return a + b;
}

constexpr int PACKED = 1;

} // namespace

Image::Image() = default;

Image::Image(void* data, std::size_t width, std::size_t height, Format format, std::size_t byteRowStride) {
    const std::size_t pixelStride = kernels::pixelByteSize(format);
    setView(data, width, height, format, pixelStride, byteRowStride == 0 ? pixelStride * width : byteRowStride);
}

Image::Image(std::size_t width, std::size_t height, Format format, int rowAlignment) {
    const std::size_t pixelStride = kernels::pixelByteSize(format);
    const std::size_t pixelBytes = checkedProduct(pixelStride, width);
    const auto alignment = static_cast<std::size_t>(rowAlignment);
    const std::size_t excess = pixelBytes % alignment;
    const std::size_t padding = excess == 0 ? 0 : alignment - excess;
    const std::size_t rowStride = checkedSum(pixelBytes, padding);

    const std::size_t size = checkedProduct(rowStride, height);
    setView(::operator new(size), width, height, format, pixelStride, rowStride);
    mOwnsData = true;
    adviseLargePages(mData, size);
    if (padding != 0) {
        kernels::forEachRow(height, [&](std::size_t y) {
            std::memset(static_cast<unsigned char*>(getRowPtr(y)) + pixelBytes, 0, padding);
        });
    }
}

Image::Image(const Image& other)
    : mFormat(other.mFormat), mData(other.mData), mWidth(other.mWidth), mHeight(other.mHeight),
      mBytePixelStride(other.mBytePixelStride), mByteRowStride(other.mByteRowStride) {
}

Image& Image::operator=(const Image& other) = default;

Image::~Image() {
    if (mOwnsData) {
        ::operator delete(mData);
    }
}

void Image::setView(void* data, std::size_t width, std::size_t height, Format format, std::size_t bytePixelStride,
                    std::size_t byteRowStride) {
    mFormat = format;
    mData = data;
    mWidth = width;
    mHeight = height;
    mBytePixelStride = bytePixelStride;
    mByteRowStride = byteRowStride;
}

bool Image::isBGR() const {
    return mFormat == SBGR8 || mFormat == SBGRA8;
}

bool Image::hasFloatFormat() const {
    return kernels::isKnown(mFormat) && kernels::pixelFormat(mFormat).isFloat();
}

Image Image::getSubImage(std::size_t x, std::size_t y, std::size_t w, std::size_t h) const {
    Image view;
    view.setView(getPixelPtr(x, y), w, h, GRAY8, mBytePixelStride, mByteRowStride);
    return view;
}

std::shared_ptr<Image> Image::scale(std::size_t /*width*/, std::size_t /*height*/) {
    return nullptr;
}

void Image::copyFrom(const Image& src) {
    if (mWidth != src.mWidth || mHeight != src.mHeight || mFormat != src.mFormat) {
        return;
    }
    const std::size_t rowBytes = src.mBytePixelStride * mWidth;
    kernels::forEachRow(rowBytes == 0 ? 0 : mHeight,
                        [&](std::size_t y) { std::memmove(getRowPtr(y), src.getRowPtr(y), rowBytes); });
}

void Image::flipHorizontal() {
    kernels::mirrorColumns(*this);
}

void Image::flipVertical() {
    kernels::mirrorRows(*this);
}

std::shared_ptr<Image> Image::rotate90() const {
    auto turned = std::make_shared<Image>(mHeight, mWidth, mFormat, PACKED);
    kernels::turnClockwise(*this, *turned);
    return turned;
}

std::shared_ptr<Image> Image::rotate180() const {
    auto turned = std::make_shared<Image>(mWidth, mHeight, mFormat, PACKED);
    kernels::turnAround(*this, *turned);
    return turned;
}

std::shared_ptr<Image> Image::rotate270() const {
    auto turned = std::make_shared<Image>(mHeight, mWidth, mFormat, PACKED);
    kernels::turnCounterClockwise(*this, *turned);
    return turned;
}

void Image::invert(Channel mask) {
    kernels::invertChannels(*this, mask);
}

std::shared_ptr<Image> Image::convertTo(Format target) const {
    auto converted = std::make_shared<Image>(mWidth, mHeight, target, PACKED);
    kernels::convertPixels(*this, *converted);
    return converted;
}

std::shared_ptr<Image> Image::convertToLinearFloat() const {
    if (!kernels::isKnown(mFormat)) {
        return nullptr;
    }
    const kernels::PixelFormat& format = kernels::pixelFormat(mFormat);
    return convertTo(format.hasAlpha() ? RGBA32F : format.isGrey() ? GRAY32F : RGB32F);
}

void Image::convertFrom(const Image& src) {
    if (mWidth == src.mWidth && mHeight == src.mHeight) {
        kernels::bringInto(src, *this);
    }
}

void premultiplied2StraightAlpha(Image& image) {
    kernels::divideByAlpha(image);
}

void straight2PremultipliedAlpha(Image& image) {
    kernels::multiplyByAlpha(image);
}

} // namespace zqx::img
