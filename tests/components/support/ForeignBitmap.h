// A bitmap component that another module might bring: it implements the interface, and is none of this module's.
#pragma once

#include <tov/CountedObject.h>
#include <tov/TovRef.h>
#include <zqx/qfreeimage/IFreeImage.h>

namespace test {

/// Answers every method with success and counts the calls.
class ForeignBitmap final : public tov::CountedObject<zqx::qfreeimage::IFreeImage> {
public:
    using IFreeImage = zqx::qfreeimage::IFreeImage;

    static tov::TovRef<ForeignBitmap> create() { return tov::TovRef(new ForeignBitmap); }

    tov::Result load(int, const char*, int) override { return answer(); }
    tov::Result loadFromStream(int, qutil::IIOStream*, int) override { return answer(); }
    tov::Result save(int, const char*, int) override { return answer(); }
    tov::Result saveToStream(tov::IOutputStream*, int, int) override { return answer(); }
    tov::Result allocate(int, int, int, int) override { return answer(); }
    tov::Result unload() override { return answer(); }
    tov::Result getWidth(int*) override { return answer(); }
    tov::Result getHeight(int*) override { return answer(); }
    tov::Result getBitsPerPixel(int*) override { return answer(); }
    tov::Result getDataType(int*) override { return answer(); }
    tov::Result getPixelF(int, int, float*, float*, float*, float*) override { return answer(); }
    tov::Result setPixelF(int, int, float, float, float, float) override { return answer(); }
    tov::Result rotate(double, IFreeImage**) override { return answer(); }
    tov::Result rescale(int, int, int, IFreeImage**) override { return answer(); }
    tov::Result getScanline(int, void**) override { return answer(); }
    tov::Result sampleF(float, float, int, float*, float*, float*, float*) override { return answer(); }
    tov::Result setScanlineF(int, const tov::Sequence<float>&) override { return answer(); }
    tov::Result copy(int, int, int, int, IFreeImage**) override { return answer(); }
    tov::Result paste(IFreeImage*, int, int, int) override { return answer(); }
    tov::Result setMetaData(const char*) override { return answer(); }
    tov::Result compositeBackgroundImage(IFreeImage*, IFreeImage**) override { return answer(); }
    tov::Result composite(IFreeImage**) override { return answer(); }
    tov::Result compositeBackgroundColor(const qutil::EColor4f&, IFreeImage**) override { return answer(); }
    tov::Result convertFromHBitmap(void*) override { return answer(); }
    tov::Result convertToHBitmap(void**) override { return answer(); }
    tov::Result getHash(int*) override { return answer(); }
    tov::Result convertTo24Bits(IFreeImage**) override { return answer(); }
    tov::Result convertTo32Bits(IFreeImage**) override { return answer(); }
    tov::Result getPalette(tov::Sequence<qutil::EColor3f>*) override { return answer(); }
    tov::Result getColorType(zqx::qfreeimage::ColorType*) override { return answer(); }
    tov::Result preMultiplyWithAlpha() override { return answer(); }
    tov::Result getTransparentIndex(int*) override { return answer(); }
    tov::Result getPixelColor(int, int, qutil::EColor4f*) override { return answer(); }
    tov::Result convertToStandardType(IFreeImage**, int) override { return answer(); }
    tov::Result convertToType(IFreeImage**, int, int) override { return answer(); }
    tov::Result getPitch(int*) override { return answer(); }

    int calls = 0;

private:
    ForeignBitmap() = default;

    tov::Result answer() {
        ++calls;
        return tov::SUCCESS;
    }
};

} // namespace test
