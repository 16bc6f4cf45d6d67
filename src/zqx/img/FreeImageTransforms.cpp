// Transforms of the bitmap component, each a call of the FreeImage library, and bitmap handles of GDI.
#include <gdi/Gdi.h>

#include "FreeImageSupport.h"

namespace zqx::img {

namespace {

/// Runs a transform that hands out a new bitmap, after the checks that all of them share.
template <typename Transform>
tov::Result transformed(const detail::MethodSite& site, FIBITMAP* bitmap, qfreeimage::IFreeImage** pOut,
                        const Transform& transform) {
    if (pOut == nullptr) {
        return detail::nullArgument(site, "pOut");
    }
    return detail::guarded(
        site, [&]() -> tov::Result { return bitmap == nullptr ? tov::NOT_READY : handOut(transform(bitmap), pOut); });
}

/// The bitmap of a component of this module; null for any other implementation of the interface.
FIBITMAP* toBitmap(qfreeimage::IFreeImage* component) {
    const auto* own = dynamic_cast<FreeImage*>(component);
    return own == nullptr ? nullptr : own->getBitmap();
}

/// The device context of the screen, for as long as this lives.
class ScreenContext {
public:
    ScreenContext() : mContext(gdi::GetDC(nullptr)) {}
    ScreenContext(const ScreenContext&) = delete;
    ScreenContext& operator=(const ScreenContext&) = delete;
    ~ScreenContext() { gdi::ReleaseDC(nullptr, mContext); }
    auto get() const { return mContext; }

private:
    decltype(gdi::GetDC(nullptr)) mContext;
};

} // namespace

tov::Result FreeImage::rotate(double angle, IFreeImage** pOut) {
    return transformed(ZQX_FREEIMAGE_SITE, mBitmap, pOut,
                       [=](FIBITMAP* bitmap) { return FreeImage_Rotate(bitmap, angle, nullptr); });
}

tov::Result FreeImage::rescale(int width, int height, int filter, IFreeImage** pOut) {
    const detail::MethodSite site = ZQX_FREEIMAGE_SITE;
    if (width < 1 || height < 1) {
        return detail::reported(site, tov::INVALID_ARGUMENT);
    }
    return transformed(site, mBitmap, pOut, [=](FIBITMAP* bitmap) {
        return FreeImage_Rescale(bitmap, width, height, static_cast<FREE_IMAGE_FILTER>(filter));
    });
}

tov::Result FreeImage::copy(int left, int top, int right, int bottom, IFreeImage** pOut) {
    return transformed(ZQX_FREEIMAGE_SITE, mBitmap, pOut,
                       [=](FIBITMAP* bitmap) { return FreeImage_Copy(bitmap, left, top, right, bottom); });
}

tov::Result FreeImage::paste(IFreeImage* pSource, int left, int top, int alpha) {
    const detail::MethodSite site = ZQX_FREEIMAGE_SITE;
    if (pSource == nullptr) {
        return detail::nullArgument(site, "pSource");
    }
    return detail::guarded(site, [&]() -> tov::Result {
        if (mBitmap == nullptr) {
            return tov::NOT_READY;
        }
        FIBITMAP* source = toBitmap(pSource);
        if (source == nullptr) {
            return tov::INVALID_ARGUMENT;
        }
        return successIf(FreeImage_Paste(mBitmap, source, left, top, alpha) != 0);
    });
}

tov::Result FreeImage::composite(IFreeImage** pOut) {
    return transformed(ZQX_FREEIMAGE_SITE, mBitmap, pOut,
                       [](FIBITMAP* bitmap) { return FreeImage_Composite(bitmap, TRUE, nullptr, nullptr); });
}

tov::Result FreeImage::compositeBackgroundImage(IFreeImage* pBackground, IFreeImage** pOut) {
    const detail::MethodSite site = ZQX_FREEIMAGE_SITE;
    if (pOut == nullptr) {
        return detail::nullArgument(site, "pOut");
    }
    if (mBitmap != nullptr && pBackground == nullptr) {
        return detail::nullArgument(site, "pBackground");
    }
    return detail::guarded(site, [&]() -> tov::Result {
        if (mBitmap == nullptr) {
            return tov::NOT_READY;
        }
        FIBITMAP* background = toBitmap(pBackground);
        if (background == nullptr) {
            return tov::INVALID_ARGUMENT;
        }
        if (FreeImage_HasPixels(background) == 0) {
            return tov::FAILURE; // the library only looks whether the picture above has any
        }
        return handOut(FreeImage_Composite(mBitmap, FALSE, nullptr, background), pOut);
    });
}

tov::Result FreeImage::compositeBackgroundColor(const qutil::EColor4f& color, IFreeImage** pOut) {
    return transformed(ZQX_FREEIMAGE_SITE, mBitmap, pOut, [&](FIBITMAP* bitmap) {
        RGBQUAD background = {};
        background.rgbRed = toByte(color.r);
        background.rgbGreen = toByte(color.g);
        background.rgbBlue = toByte(color.b);
        background.rgbReserved = toByte(color.a);
        return FreeImage_Composite(bitmap, FALSE, &background, nullptr);
    });
}

tov::Result FreeImage::convertTo24Bits(IFreeImage** pOut) {
    return transformed(ZQX_FREEIMAGE_SITE, mBitmap, pOut, FreeImage_ConvertTo24Bits);
}

tov::Result FreeImage::convertTo32Bits(IFreeImage** pOut) {
    return transformed(ZQX_FREEIMAGE_SITE, mBitmap, pOut, FreeImage_ConvertTo32Bits);
}

tov::Result FreeImage::convertToStandardType(IFreeImage** pOut, int scaleLinear) {
    return detail::guarded(ZQX_FREEIMAGE_SITE, [&]() -> tov::Result {
        return mBitmap == nullptr ? tov::NOT_READY
                                  : handOut(FreeImage_ConvertToStandardType(mBitmap, scaleLinear), pOut);
    });
}

tov::Result FreeImage::convertToType(IFreeImage** pOut, int type, int scaleLinear) {
    return detail::guarded(ZQX_FREEIMAGE_SITE, [&]() -> tov::Result {
        return mBitmap == nullptr
                   ? tov::NOT_READY
                   : handOut(FreeImage_ConvertToType(mBitmap, static_cast<FREE_IMAGE_TYPE>(type), scaleLinear), pOut);
    });
}

tov::Result FreeImage::preMultiplyWithAlpha() {
    return detail::guarded(ZQX_FREEIMAGE_SITE, [&]() -> tov::Result {
        return mBitmap == nullptr ? tov::NOT_READY : successIf(FreeImage_PreMultiplyWithAlpha(mBitmap) != 0);
    });
}

tov::Result FreeImage::convertFromHBitmap(void* pHandle) {
    const detail::MethodSite site = ZQX_FREEIMAGE_SITE;
    if (pHandle == nullptr) {
        return detail::nullArgument(site, "pHandle");
    }
    return detail::guarded(site, [&]() -> tov::Result {
        unload();
        gdi::BITMAP description = {};
        gdi::GetObjectA(pHandle, sizeof description, &description);
        mBitmap = FreeImage_Allocate(description.bmWidth, description.bmHeight, description.bmBitsPixel, 0, 0, 0);
        if (mBitmap == nullptr) {
            return tov::FAILURE;
        }
        const unsigned colorsUsed = FreeImage_GetColorsUsed(mBitmap);
        BITMAPINFOHEADER& header = *FreeImage_GetInfoHeader(mBitmap);
        const ScreenContext screen;
        const int lines =
            gdi::GetDIBits(screen.get(), static_cast<gdi::HBITMAP>(pHandle), 0, FreeImage_GetHeight(mBitmap),
                           FreeImage_GetBits(mBitmap), FreeImage_GetInfo(mBitmap), gdi::RGB_COLORS);
        // GetDIBits clears the counts, and FreeImage finds the pixels by them: put them back before anything else.
        header.biClrUsed = colorsUsed;
        header.biClrImportant = colorsUsed;
        return successIf(lines != 0);
    });
}

tov::Result FreeImage::convertToHBitmap(void** pHandle) {
    const detail::MethodSite site = ZQX_FREEIMAGE_SITE;
    if (pHandle == nullptr) {
        return detail::nullArgument(site, "pHandle");
    }
    return detail::guarded(site, [&]() -> tov::Result {
        if (mBitmap == nullptr) {
            return tov::NOT_READY;
        }
        if (FreeImage_HasPixels(mBitmap) == 0) {
            return tov::FAILURE;
        }
        const ScreenContext screen;
        void* bits = nullptr;
        *pHandle = gdi::CreateDIBSection(screen.get(), FreeImage_GetInfo(mBitmap), gdi::RGB_COLORS, &bits, nullptr, 0);
        if (bits != nullptr) {
            copyBytes(bits, FreeImage_GetBits(mBitmap),
                      std::size_t{FreeImage_GetPitch(mBitmap)} * FreeImage_GetHeight(mBitmap));
        }
        return tov::SUCCESS;
    });
}

} // namespace zqx::img
