/// @file
/// A picture held by the FreeImage library: the bitmap component.
#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include <qutil/InterfaceAdapter.h>
#include <tov/TovRef.h>
#include <zqx/img/Export.h>
#include <zqx/img/Image.h>
#include <zqx/qfreeimage/IFreeImage.h>

struct FIBITMAP; // FreeImage's bitmap handle

namespace zqx::img {

/// The bitmap component. See IFreeImage for what its methods do.
///
/// Lives on the heap: made with a count of 0, it is destroyed, with its bitmap, by the release of its last reference.
/// @ingroup components
class ZQX_IMG_API FreeImage : public TovInterfaceAdapter<qfreeimage::IFreeImage_Adapter> {
public:
    /// The interface that this is a component of.
    using IFreeImage = qfreeimage::IFreeImage;

    /// An empty component.
    FreeImage() = default;
    /// Takes ownership of the bitmap.
    explicit FreeImage(FIBITMAP* bitmap) : mBitmap(bitmap) {}
    /// @{

    /// Copies are shallow: both own the bitmap, and the count is copied. Components are not copied in practice.
    FreeImage(const FreeImage&) = default;
    FreeImage& operator=(const FreeImage&) = default;
    /// @}
    /// Frees the bitmap.
    ~FreeImage() override;

    /// A new empty component with a count of 0.
    static FreeImage* create();
    /// A new component with the picture of a file, its format found by content, then by name. When loading fails the
    /// assertion handler decides: the reference is empty, or the component has no bitmap.
    static tov::TovRef<FreeImage> load(const char* path);

    /// @name The interface
    /// @{

    /// As described at the method of the same name in qfreeimage::IFreeImage.
    tov::Result load(int format, const char* path, int flags) override;
    tov::Result loadFromStream(int format, qutil::IIOStream* pStream, int flags) override;
    tov::Result save(int format, const char* path, int flags) override;
    tov::Result saveToStream(tov::IOutputStream* pStream, int format, int flags) override;
    tov::Result allocate(int type, int width, int height, int bitsPerPixel) override;
    tov::Result unload() override;
    tov::Result getWidth(int* pWidth) override;
    tov::Result getHeight(int* pHeight) override;
    tov::Result getBitsPerPixel(int* pBitsPerPixel) override;
    tov::Result getDataType(int* pType) override;

    tov::Result getPixelF(int x, int y, float* r, float* g, float* b, float* a) override;
    tov::Result setPixelF(int x, int y, float r, float g, float b, float a) override;
    tov::Result rotate(double angle, IFreeImage** pOut) override;
    tov::Result rescale(int width, int height, int filter, IFreeImage** pOut) override;
    tov::Result getScanline(int line, void** pLine) override;
    tov::Result sampleF(float u, float v, int mode, float* r, float* g, float* b, float* a) override;
    tov::Result setScanlineF(int line, const tov::Sequence<float>& values) override;
    tov::Result copy(int left, int top, int right, int bottom, IFreeImage** pOut) override;
    tov::Result paste(IFreeImage* pSource, int left, int top, int alpha) override;
    tov::Result setMetaData(const char* pXmp) override;
    tov::Result compositeBackgroundImage(IFreeImage* pBackground, IFreeImage** pOut) override;
    tov::Result composite(IFreeImage** pOut) override;
    tov::Result compositeBackgroundColor(const qutil::EColor4f& color, IFreeImage** pOut) override;
    tov::Result convertFromHBitmap(void* pHandle) override;
    tov::Result convertToHBitmap(void** pHandle) override;
    tov::Result getHash(int* pHash) override;
    tov::Result convertTo24Bits(IFreeImage** pOut) override;
    tov::Result convertTo32Bits(IFreeImage** pOut) override;
    tov::Result getPalette(tov::Sequence<qutil::EColor3f>* pPalette) override;
    tov::Result getColorType(qfreeimage::ColorType* pType) override;
    tov::Result preMultiplyWithAlpha() override;
    tov::Result getTransparentIndex(int* pIndex) override;
    tov::Result getPixelColor(int x, int y, qutil::EColor4f* pColor) override;
    tov::Result convertToStandardType(IFreeImage** pOut, int scaleLinear) override;
    tov::Result convertToType(IFreeImage** pOut, int type, int scaleLinear) override;
    tov::Result getPitch(int* pPitch) override;
    /// @}

    /// Pixels in a row; 0 when there is no bitmap.
    std::size_t getWidth() const;
    /// Rows; 0 when there is no bitmap.
    std::size_t getHeight() const;
    /// Bits per pixel; 0 when there is no bitmap.
    std::size_t getBitsPerPixel() const;

    /// The bitmap, for programs that work with FreeImage themselves; still owned by this object, null when there is
    /// none.
    FIBITMAP* getBitmap() const { return mBitmap; }

    /// A view of the bitmap's own memory, holding a reference on this object. Row 0 is the bottom row of the picture.
    ///
    /// The format follows the bits per pixel alone: 8 SGRAY8, 24 SBGR8, 32 SBGRA8, 96 RGB32F, 128 RGBA32F, others
    /// GRAY8 with a stride that does not fit it; the bitmap's type and palette are not consulted. Without a bitmap, and
    /// with one that was loaded without its pixels, the view is empty. Loading, allocating
    /// or unloading while a view exists leaves it dangling. The view can scale.
    std::shared_ptr<Image> asImage();
    /// The same view, to be looked at only. It holds a reference all the same.
    std::shared_ptr<const Image> asImage() const { return const_cast<FreeImage*>(this)->asImage(); }

    /// What FreeImage said, on this thread, during the last load or save through a component; empty when it was
    /// content, cut where it becomes long.
    ///
    /// A process has two functions that FreeImage speaks to, and no way to ask for those that are set. A program's own,
    /// given with FreeImage_SetOutputMessage, is left alone and hears everything. The other one, of
    /// FreeImage_SetOutputMessageStdCall, the module takes when a component first loads or saves, and never again: a
    /// program that needs it sets it after that, and this text stays empty then.
    static std::string getLibraryMessage();

private:
    bool supportsWriting(int format) const;

    FIBITMAP* mBitmap = nullptr;
};

} // namespace zqx::img
