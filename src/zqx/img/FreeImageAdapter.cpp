#include "FreeImageAdapter.h"

#include <stdexcept>

#include <FreeImage.h>

#include <qutil/Assert.h>
#include <qutil/StrError.h>
#include <tov/TovRef.h>

#include "BitmapSize.h"

namespace zqx::img {

namespace {

/// The format that bitmaps of a depth are seen in; their type is not consulted.
Image::Format formatOfDepth(int bitsPerPixel) {
    switch (bitsPerPixel) {
    case 8: return Image::SGRAY8;
    case 24: return Image::SBGR8;
    case 32: return Image::SBGRA8;
    case 96: return Image::RGB32F;
    case 128: return Image::RGBA32F;
    default: return Image::GRAY8;
    }
}

/// @return tov::INVALID_ARGUMENT also for sizes that no bitmap has
tov::Result rescale(qfreeimage::IFreeImage& bitmap, std::size_t width, std::size_t height,
                    qfreeimage::IFreeImage** pOut) {
    const std::optional<int> columns = toBitmapSize(width);
    const std::optional<int> rows = toBitmapSize(height);
    return columns && rows ? bitmap.rescale(*columns, *rows, FILTER_LANCZOS3, pOut) : tov::INVALID_ARGUMENT;
}

} // namespace

FreeImageAdapter::FreeImageAdapter(qfreeimage::IFreeImage* bitmap) : mFreeImage(bitmap) {
    if (bitmap == nullptr) {
        throw std::invalid_argument("FreeImageAdapter: no bitmap component");
    }
    bitmap->addRef();
    int width = 0;
    int height = 0;
    int bitsPerPixel = 0;
    int pitch = 0;
    void* bottomLine = nullptr;
    bitmap->getWidth(&width);
    bitmap->getHeight(&height);
    bitmap->getBitsPerPixel(&bitsPerPixel);
    bitmap->getPitch(&pitch);
    bitmap->getScanline(0, &bottomLine);
    if (bottomLine == nullptr) {
        return; // a size may be known without pixels; the view of that is empty
    }
    setView(bottomLine, static_cast<std::size_t>(width), static_cast<std::size_t>(height), formatOfDepth(bitsPerPixel),
            static_cast<std::size_t>(bitsPerPixel) / 8, static_cast<std::size_t>(pitch));
}

FreeImageAdapter::~FreeImageAdapter() {
    mFreeImage->release();
}

std::shared_ptr<Image> FreeImageAdapter::scale(std::size_t width, std::size_t height) {
    tov::TovRef<qfreeimage::IFreeImage> scaled;
    const tov::Result result = rescale(*mFreeImage, width, height, scaled.receive());
    if (tov::failed(result) && !zqxAssert(qutil::tovStrError(result))) {
        return nullptr;
    }
    return scaled ? std::make_shared<FreeImageAdapter>(scaled.get()) : nullptr;
}

} // namespace zqx::img
