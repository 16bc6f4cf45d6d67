// Pixels are not copied: the rows are only swapped in place, since FreeImage stores them bottom-up.
#include "zqx/pictures/codecs/freeimage/Bitmap.h"

#include <new>
#include <utility>

namespace zqx::pictures {

namespace {

FREE_IMAGE_TYPE detectType(SampleLayout working) {
    switch (working) {
    case SampleLayout::GRAY32F: return FIT_FLOAT;
    case SampleLayout::RGB32F: return FIT_RGBF;
    case SampleLayout::RGBA32F: return FIT_RGBAF;
    default: return FIT_BITMAP;
    }
}

SampleLayout getLayout(FIBITMAP* bitmap) {
    switch (FreeImage_GetImageType(bitmap)) {
    case FIT_FLOAT: return SampleLayout::GRAY32F;
    case FIT_RGBF: return SampleLayout::RGB32F;
    case FIT_RGBAF: return SampleLayout::RGBA32F;
    default: break;
    }
    const unsigned bits = FreeImage_GetBPP(bitmap);
    return bits == 32 ? SampleLayout::RGBA8 : bits == 24 ? SampleLayout::RGB8 : SampleLayout::GRAY8;
}

} // namespace

RowOrder getRowOrder(FREE_IMAGE_FORMAT format) {
    return format == FIF_PFM ? RowOrder::TOP_FIRST : RowOrder::BOTTOM_FIRST;
}

Bitmap allocateBitmap(FREE_IMAGE_TYPE type, unsigned width, unsigned height, int bitsPerPixel) {
    Bitmap bitmap(FreeImage_AllocateT(type, static_cast<int>(width), static_cast<int>(height), bitsPerPixel,
                                      FI_RGBA_RED_MASK, FI_RGBA_GREEN_MASK, FI_RGBA_BLUE_MASK));
    if (!bitmap) {
        throw std::bad_alloc();
    }
    return bitmap;
}

PixelBuffer takePixels(Bitmap bitmap, RowOrder order) {
    if (order == RowOrder::BOTTOM_FIRST) {
        FreeImage_FlipVertical(bitmap.get());
    }
    const img::Image view(FreeImage_GetBits(bitmap.get()), FreeImage_GetWidth(bitmap.get()),
                          FreeImage_GetHeight(bitmap.get()), workingFormat(getLayout(bitmap.get())),
                          FreeImage_GetPitch(bitmap.get()));
    return {view, std::shared_ptr<FIBITMAP>(bitmap.release(), FreeImage_Unload)};
}

Bitmap wrapPixels(PixelBuffer& pixels, RowOrder order) {
    img::Image& image = pixels.image();
    if (order == RowOrder::BOTTOM_FIRST) {
        image.flipVertical();
    }
    Bitmap bitmap(FreeImage_ConvertFromRawBitsEx(
        FALSE, static_cast<BYTE*>(image.getDataPtr()), detectType(pixels.layout()), static_cast<int>(pixels.width()),
        static_cast<int>(pixels.height()), static_cast<int>(image.getByteRowStride()),
        static_cast<unsigned>(8 * image.getBytePixelStride()), FI_RGBA_RED_MASK, FI_RGBA_GREEN_MASK, FI_RGBA_BLUE_MASK,
        FALSE));
    if (!bitmap) {
        throw std::bad_alloc();
    }
    return bitmap;
}

} // namespace zqx::pictures
