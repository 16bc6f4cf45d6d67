// Allocation and ownership of pixels.
#include "zqx/pictures/PixelBuffer.h"

#include <cstring>
#include <utility>

namespace zqx::pictures {

namespace {

std::shared_ptr<img::Image> allocateBlack(std::size_t width, std::size_t height, SampleLayout layout) {
    constexpr int ROW_ALIGNMENT = 4; // that of FreeImage, which can then use the rows without copying
    auto image = std::make_shared<img::Image>(width, height, workingFormat(layout), ROW_ALIGNMENT);
    std::memset(image->getDataPtr(), 0, image->getByteRowStride() * height);
    return image;
}

} // namespace

PixelBuffer::PixelBuffer(std::size_t width, std::size_t height, SampleLayout layout)
    : PixelBuffer(allocateBlack(width, height, layout)) {
}

PixelBuffer::PixelBuffer(std::shared_ptr<img::Image> image) : mImage(*image) {
    mMemory = std::move(image);
}

PixelBuffer::PixelBuffer(const img::Image& view, std::shared_ptr<void> memory)
    : mMemory(std::move(memory)), mImage(view) {
}

PixelBuffer::PixelBuffer(PixelBuffer&& other) noexcept : mMemory(std::move(other.mMemory)), mImage(other.mImage) {
    other.mImage = img::Image();
}

PixelBuffer& PixelBuffer::operator=(PixelBuffer&& other) noexcept {
    if (this != &other) {
        mMemory = std::move(other.mMemory);
        mImage = other.mImage;
        other.mImage = img::Image();
    }
    return *this;
}

void PixelBuffer::reset() {
    *this = PixelBuffer();
}

} // namespace zqx::pictures
