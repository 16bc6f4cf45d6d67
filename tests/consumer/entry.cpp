// Links the library, shared or static, and calls the module's entry point itself: makes a bitmap, asks for its width.
#include <cstdint>
#include <cstdio>

#include <tov/IObjectFactory.h>
#include <tov/Result.h>
#include <tov/TovRef.h>
#include <zqx/qfreeimage/IFreeImage.h>

extern "C" std::uint32_t dsoGetObjectFactory(const char* clsid, const char* iid, void** pOut);

int main() {
    using zqx::qfreeimage::IFreeImage;
    constexpr const char* BITMAP_CLASS = "f92bd073-5780-4bcf-843c-f375c20b9455";
    constexpr int STANDARD_BITMAP = 1; // FIT_BITMAP: bytes

    void* pOut = nullptr;
    if (tov::failed(dsoGetObjectFactory(BITMAP_CLASS, tov::IObjectFactory::IID, &pOut))) {
        std::fprintf(stderr, "there is no factory of bitmaps\n");
        return 1;
    }
    const auto factory = tov::TovRef<tov::IObjectFactory>::adopt(static_cast<tov::IObjectFactory*>(pOut));
    if (tov::failed(factory->createInstance(nullptr, IFreeImage::IID, &pOut))) {
        std::fprintf(stderr, "the factory makes no bitmap\n");
        return 1;
    }
    const auto bitmap = tov::TovRef<IFreeImage>::adopt(static_cast<IFreeImage*>(pOut));
    int width = 0;
    if (tov::failed(bitmap->allocate(STANDARD_BITMAP, 3, 2, 24)) || tov::failed(bitmap->getWidth(&width))) {
        std::fprintf(stderr, "the bitmap fails\n");
        return 1;
    }
    return width == 3 ? 0 : 1;
}
