// Pixel access of the bitmap component: single pixels, scan lines, samples, palettes, hashes.
#include <cmath>
#include <cstring>
#include <limits>

#include <qutil/Hash.h>
#include <zqx/img/FreeImage.h>

#include "components/support/Bitmaps.h"
#include "components/support/ComponentTest.h"
#include "components/support/HeaderOnly.h"
#include "components/support/Interposed.h"

namespace {

using namespace test;
using LinkedBitmap = zqx::img::FreeImage;
using zqx::qfreeimage::ColorType;

const Pixel UNTOUCHED = {-1.0F, -2.0F, -3.0F, -4.0F};

/// A result code with the pixel that came with it.
struct Read {
    tov::Result result;
    Pixel pixel;
};

Read readPixel(IFreeImage& bitmap, int x, int y) {
    Read read{0, UNTOUCHED};
    read.result = bitmap.getPixelF(x, y, &read.pixel.r, &read.pixel.g, &read.pixel.b, &read.pixel.a);
    return read;
}

Pixel sampleAt(IFreeImage& bitmap, float u, float v, int mode) {
    Pixel pixel = UNTOUCHED;
    EXPECT_EQ(bitmap.sampleF(u, v, mode, &pixel.r, &pixel.g, &pixel.b, &pixel.a), 0U);
    return pixel;
}

/// RGBA floats that make blends easy: every component of pixel (x, y) is x + 10 y.
Bitmap ramp(int width, int height) {
    Bitmap bitmap = allocated(FIT_RGBAF, width, height, 128);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const auto value = static_cast<float>(x + 10 * y);
            setPixel(*bitmap, x, y, {value, value, value, value});
        }
    }
    return bitmap;
}

/// The red component of a ramp's sample.
float rampAt(IFreeImage& bitmap, float u, float v, int mode) {
    return sampleAt(bitmap, u, v, mode).r;
}

tov::Result setLine(IFreeImage& bitmap, int line, std::vector<float> values) {
    return bitmap.setScanlineF(line, {static_cast<std::uint32_t>(values.size()), values.data()});
}

int computeHash(IFreeImage& bitmap) {
    int hash = 0;
    EXPECT_EQ(bitmap.getHash(&hash), 0U);
    return hash;
}

class BitmapPixelTest : public ComponentTest {};

/// Layouts without float access: type and depth.
class UnsupportedLayoutTest : public ComponentTest, public testing::WithParamInterface<std::pair<int, int>> {};

INSTANTIATE_TEST_SUITE_P(Layouts, UnsupportedLayoutTest,
                         testing::Values(std::pair(FIT_BITMAP, 1), std::pair(FIT_BITMAP, 4), std::pair(FIT_BITMAP, 8),
                                         std::pair(FIT_BITMAP, 16), std::pair(FIT_UINT16, 16),
                                         std::pair(FIT_UINT32, 32), std::pair(FIT_FLOAT, 32), std::pair(FIT_RGB16, 48),
                                         std::pair(FIT_RGBA16, 64), std::pair(FIT_DOUBLE, 64),
                                         std::pair(FIT_COMPLEX, 128)),
                         [](const auto& tested) {
                             return "Type" + std::to_string(tested.param.first) + "Depth" +
                                    std::to_string(tested.param.second);
                         });

} // namespace

// --- Single pixels

TEST_F(BitmapPixelTest, TopLeftPixelIsInTheLastScanLine) {
    const Bitmap bitmap = allocated(FIT_BITMAP, 2, 3, 24);
    unsigned char* top = getLine(*bitmap, 2);
    top[0] = 51;
    top[1] = 102;
    top[2] = 255;
    EXPECT_EQ(pixelAt(*bitmap, 0, 0), (Pixel{1.0F, 102.0F / 255.0F, 51.0F / 255.0F, 1.0F}));
    EXPECT_EQ(pixelAt(*bitmap, 0, 2), (Pixel{0.0F, 0.0F, 0.0F, 1.0F}));
}

TEST_F(BitmapPixelTest, BytesAreBlueGreenRedAlpha) {
    const Bitmap bitmap = allocated(FIT_BITMAP, 2, 1, 32);
    const unsigned char bytes[4] = {1, 2, 3, 4};
    std::memcpy(getLine(*bitmap, 0) + 4, bytes, 4);
    EXPECT_EQ(pixelAt(*bitmap, 1, 0), (Pixel{3.0F / 255.0F, 2.0F / 255.0F, 1.0F / 255.0F, 4.0F / 255.0F}));
}

TEST_F(BitmapPixelTest, FloatsAreReadAsStored) {
    const Bitmap rgb = allocated(FIT_RGBF, 2, 1, 96);
    const Bitmap rgba = allocated(FIT_RGBAF, 2, 1, 128);
    const float values[4] = {-3.5F, 700.0F, 0.25F, 9.0F};
    std::memcpy(getLine(*rgb, 0) + 12, values, 12);
    std::memcpy(getLine(*rgba, 0) + 16, values, 16);
    EXPECT_EQ(pixelAt(*rgb, 1, 0), (Pixel{-3.5F, 700.0F, 0.25F, 1.0F})) << "opaque where there is no alpha";
    EXPECT_EQ(pixelAt(*rgba, 1, 0), (Pixel{-3.5F, 700.0F, 0.25F, 9.0F}));
}

TEST_F(BitmapPixelTest, PixelsAreWrittenFromTheTop) {
    const Bitmap bitmap = allocated(FIT_BITMAP, 2, 3, 32);
    setPixel(*bitmap, 1, 0, {3.0F / 255.0F, 2.0F / 255.0F, 1.0F / 255.0F, 4.0F / 255.0F});
    EXPECT_EQ(bytesOfLine(*bitmap, 2, 8), (std::vector<int>{0, 0, 0, 0, 1, 2, 3, 4}));
    EXPECT_EQ(bytesOfLine(*bitmap, 0, 8), std::vector<int>(8, 0));
}

TEST_F(BitmapPixelTest, TwentyFourBitsIgnoreAlpha) {
    const Bitmap bitmap = allocated(FIT_BITMAP, 2, 1, 24);
    setPixel(*bitmap, 0, 0, {0.0F, 0.0F, 1.0F, 1.0F});
    EXPECT_EQ(bytesOfLine(*bitmap, 0, 6), (std::vector<int>{255, 0, 0, 0, 0, 0}));
}

TEST_F(BitmapPixelTest, FloatsAreWrittenAsGiven) {
    const Bitmap rgb = allocated(FIT_RGBF, 2, 1, 96);
    const Bitmap rgba = allocated(FIT_RGBAF, 2, 1, 128);
    setPixel(*rgb, 0, 0, {-3.5F, 700.0F, 0.25F, 9.0F});
    setPixel(*rgba, 0, 0, {-3.5F, 700.0F, 0.25F, 9.0F});
    EXPECT_EQ(pixelAt(*rgb, 0, 0), (Pixel{-3.5F, 700.0F, 0.25F, 1.0F}));
    EXPECT_EQ(pixelAt(*rgb, 1, 0), (Pixel{0.0F, 0.0F, 0.0F, 1.0F})) << "alpha has not run into the next pixel";
    EXPECT_EQ(pixelAt(*rgba, 0, 0), (Pixel{-3.5F, 700.0F, 0.25F, 9.0F}));
}

TEST_F(BitmapPixelTest, BytesAreTruncatedLimitedAboveAndWrappedBelow) {
    const Bitmap bitmap = allocated(FIT_BITMAP, 1, 1, 32);
    const std::vector<std::pair<float, int>> cases = {
        {1.5F, 255},  {1.0F, 255},   {0.999F, 254}, {0.5F, 127},    {0.0F, 0},
        {-0.5F, 129}, {-0.001F, 0},  {-1.0F, 1},    {-2.0F, 2},     {1e30F, 255},
        {-0.0F, 0},   {0.00392F, 0}, {0.00393F, 1}, {-100.0F, 100}, {std::numeric_limits<float>::infinity(), 255}};
    for (const auto& [value, byte] : cases) {
        setPixel(*bitmap, 0, 0, {value, value, value, value});
        EXPECT_EQ(bytesOfLine(*bitmap, 0, 4), std::vector<int>(4, byte)) << value;
    }
}

TEST_F(BitmapPixelTest, PixelsOfAnEmptyObjectAreNotReady) {
    const Bitmap bitmap = newBitmap();
    const Read read = readPixel(*bitmap, 0, 0);
    EXPECT_EQ(read.result, 0x80000100U);
    EXPECT_EQ(read.pixel, UNTOUCHED);
    EXPECT_EQ(bitmap->setPixelF(0, 0, 0.0F, 0.0F, 0.0F, 0.0F), 0x80000100U);
}

TEST_P(UnsupportedLayoutTest, FloatAccessIsNotSupported) {
    const Bitmap bitmap = allocated(GetParam().first, 4, 2, GetParam().second);
    const Read read = readPixel(*bitmap, 0, 0);
    EXPECT_EQ(read.result, 0x80000101U);
    EXPECT_EQ(read.pixel, UNTOUCHED);
    EXPECT_EQ(bitmap->setPixelF(0, 0, 1.0F, 1.0F, 1.0F, 1.0F), 0x80000101U);
    EXPECT_EQ(setLine(*bitmap, 0, std::vector<float>(16, 1.0F)), 0x80000101U);
    EXPECT_EQ(bytesOfLine(*bitmap, 0, 1), std::vector<int>{0});
}

TEST_P(UnsupportedLayoutTest, SamplingStillSucceeds) {
    const Bitmap bitmap = allocated(GetParam().first, 4, 2, GetParam().second);
    sampleAt(*bitmap, 0.5F, 0.5F, 0);
    sampleAt(*bitmap, 0.5F, 0.5F, 1);
}

// --- Scan lines

TEST_F(BitmapPixelTest, ScanLinesAreCountedFromTheBottom) {
    const Bitmap bitmap = painted(2, 3);
    EXPECT_EQ(bytesOfLine(*bitmap, 0, 3), (std::vector<int>{200, 100, 5})) << "the lowest row, y = 2";
    EXPECT_EQ(getLine(*bitmap, 1), getLine(*bitmap, 0) + computePitch(*bitmap));
}

TEST_F(BitmapPixelTest, ScanLineChecksTheBitmapBeforeThePointer) {
    void* line = this;
    EXPECT_EQ(newBitmap()->getScanline(0, nullptr), 0x80000100U);
    EXPECT_EQ(newBitmap()->getScanline(0, &line), 0x80000100U);
    EXPECT_EQ(line, this);
    EXPECT_EQ(painted(2, 2)->getScanline(0, nullptr), 0x80070057U);
}

TEST_F(BitmapPixelTest, ScanLineOfABitmapWithoutPixelsIsAFailure) {
    const Bitmap bitmap = headerOnly(4, 4, 24);
    void* line = this;
    EXPECT_EQ(bitmap->getScanline(0, &line), 0x80004005U);
    EXPECT_EQ(line, nullptr);
}

TEST_F(BitmapPixelTest, FloatsAreWrittenToAScanLineOf24Bits) {
    const Bitmap bitmap = allocated(FIT_BITMAP, 2, 2, 24);
    EXPECT_EQ(setLine(*bitmap, 0, {1.0F, 0.5F, 0.0F, 0.3F, -0.5F, 1.5F, 0.2F, 0.3F}), 0U);
    EXPECT_EQ(bytesOfLine(*bitmap, 0, 8), (std::vector<int>{0, 127, 255, 51, 255, 129, 0, 0}));
    EXPECT_EQ(bytesOfLine(*bitmap, 1, 8), std::vector<int>(8, 0));
}

TEST_F(BitmapPixelTest, FloatsAreWrittenToAScanLineOf32Bits) {
    const Bitmap bitmap = allocated(FIT_BITMAP, 2, 2, 32);
    EXPECT_EQ(setLine(*bitmap, 1, {1.0F, 0.5F, 0.0F, 0.2F, 0.0F, 0.0F, 1.0F, 2.0F}), 0U);
    EXPECT_EQ(bytesOfLine(*bitmap, 1, 8), (std::vector<int>{0, 127, 255, 51, 255, 0, 0, 255}));
    EXPECT_EQ(bytesOfLine(*bitmap, 0, 8), std::vector<int>(8, 0));
}

TEST_F(BitmapPixelTest, ScanLineOfRgbFloatsDropsAlpha) {
    const Bitmap bitmap = allocated(FIT_RGBF, 2, 2, 96);
    EXPECT_EQ(setLine(*bitmap, 0, {1.0F, -2.0F, 3.0F, 9.0F, 4.0F, 5.0F, 600.0F, 9.0F}), 0U);
    EXPECT_EQ(pixelAt(*bitmap, 0, 1), (Pixel{1.0F, -2.0F, 3.0F, 1.0F}));
    EXPECT_EQ(pixelAt(*bitmap, 1, 1), (Pixel{4.0F, 5.0F, 600.0F, 1.0F}));
}

TEST_F(BitmapPixelTest, ScanLineOfRgbaFloatsTakesAsManyAsGiven) {
    const Bitmap bitmap = allocated(FIT_RGBAF, 2, 2, 128);
    EXPECT_EQ(setLine(*bitmap, 1, {1.0F, 2.0F, 3.0F, 4.0F, 5.0F}), 0U);
    EXPECT_EQ(pixelAt(*bitmap, 0, 0), (Pixel{1.0F, 2.0F, 3.0F, 4.0F}));
    EXPECT_EQ(pixelAt(*bitmap, 1, 0), (Pixel{5.0F, 0.0F, 0.0F, 0.0F}));
    EXPECT_EQ(setLine(*bitmap, 1, {}), 0U);
    EXPECT_EQ(pixelAt(*bitmap, 0, 0), (Pixel{1.0F, 2.0F, 3.0F, 4.0F}));
}

TEST_F(BitmapPixelTest, ScanLineOfAnEmptyObjectIsNotReady) {
    EXPECT_EQ(setLine(*newBitmap(), 0, {}), 0x80000100U);
}

// --- Sampling

TEST_F(BitmapPixelTest, NearestSampleTruncatesThePosition) {
    const Bitmap bitmap = ramp(2, 2);
    EXPECT_EQ(rampAt(*bitmap, 0.5F, 0.5F, 0), 11.0F);
    EXPECT_EQ(rampAt(*bitmap, 0.49F, 0.5F, 0), 10.0F);
    EXPECT_EQ(rampAt(*bitmap, 0.5F, 0.49F, 0), 1.0F);
    EXPECT_EQ(rampAt(*bitmap, 0.0F, 0.0F, 0), 0.0F);
}

TEST_F(BitmapPixelTest, NearestSampleStaysInside) {
    const Bitmap bitmap = ramp(3, 2);
    EXPECT_EQ(rampAt(*bitmap, 1.0F, 1.0F, 0), 12.0F);
    EXPECT_EQ(rampAt(*bitmap, 7.0F, 0.0F, 0), 2.0F);
    EXPECT_EQ(rampAt(*bitmap, -7.0F, 5.0F, 0), 10.0F);
    EXPECT_EQ(rampAt(*bitmap, 0.9F, -1.0F, 0), 2.0F);
}

TEST_F(BitmapPixelTest, NearestSampleIsExact) {
    const Bitmap bitmap = painted(3, 3);
    EXPECT_EQ(sampleAt(*bitmap, 0.99F, 0.34F, 0), colorAt(2, 1));
}

TEST_F(BitmapPixelTest, BilinearSampleAtAPixelsCentreIsThePixel) {
    const Bitmap bitmap = ramp(2, 2);
    EXPECT_EQ(rampAt(*bitmap, 0.25F, 0.25F, 1), 0.0F);
    EXPECT_EQ(rampAt(*bitmap, 0.75F, 0.25F, 1), 1.0F);
    EXPECT_EQ(rampAt(*bitmap, 0.25F, 0.75F, 1), 10.0F);
}

TEST_F(BitmapPixelTest, BilinearSampleBlendsFourNeighbours) {
    const Bitmap bitmap = ramp(2, 2);
    EXPECT_EQ(rampAt(*bitmap, 0.5F, 0.5F, 1), 5.5F);
    EXPECT_EQ(rampAt(*bitmap, 0.5F, 0.25F, 1), 0.5F);
    EXPECT_EQ(rampAt(*bitmap, 0.375F, 0.625F, 1), 7.75F);
}

TEST_F(BitmapPixelTest, BilinearSampleAtTheFarCornerBlendsWithTheFirstColumnAndRow) {
    // Position 1.5 in both directions: halfway between the last pixel and, around the edge, the first.
    EXPECT_EQ(rampAt(*ramp(2, 2), 1.0F, 1.0F, 1), (11.0F + 10.0F + 1.0F + 0.0F) / 4.0F);
}

TEST_F(BitmapPixelTest, BilinearSampleBelowTheFirstCentreIsTheFirstPixel) {
    const Bitmap bitmap = ramp(4, 4);
    EXPECT_EQ(rampAt(*bitmap, 0.0F, 0.0F, 1), 0.0F);
    EXPECT_EQ(rampAt(*bitmap, 0.1F, -3.0F, 1), 0.0F);
}

TEST_F(BitmapPixelTest, BilinearSampleFarOutsideWrapsToTheFirstPixel) {
    // Limited to 1, the position is the width itself, whose pixel is the first one again.
    EXPECT_EQ(rampAt(*ramp(4, 4), 9.0F, 0.125F, 1), 0.0F);
    EXPECT_EQ(rampAt(*ramp(4, 4), 0.125F, 9.0F, 1), 0.0F);
}

TEST_F(BitmapPixelTest, EveryModeButZeroIsBilinear) {
    const Bitmap bitmap = ramp(2, 2);
    for (const int mode : {1, 2, -1, 99}) {
        EXPECT_EQ(rampAt(*bitmap, 0.5F, 0.5F, mode), 5.5F) << mode;
    }
}

TEST_F(BitmapPixelTest, SamplesOfAnEmptyObjectAreZero) {
    const Bitmap bitmap = newBitmap();
    EXPECT_EQ(sampleAt(*bitmap, 0.5F, 0.5F, 0), (Pixel{0.0F, 0.0F, 0.0F, 0.0F}));
    EXPECT_EQ(sampleAt(*bitmap, 0.5F, 0.5F, 1), (Pixel{0.0F, 0.0F, 0.0F, 0.0F}));
}

// --- Colours, palettes and kinds

TEST_F(BitmapPixelTest, PixelColorIsNotScaled) {
    const Bitmap bitmap = allocated(FIT_BITMAP, 2, 2, 32);
    setPixel(*bitmap, 1, 0, {1.0F, 0.2F, 0.4F, 0.6F});
    qutil::EColor4f color{};
    EXPECT_EQ(bitmap->getPixelColor(1, 0, &color), 0U);
    EXPECT_EQ((Pixel{color.r, color.g, color.b, color.a}), (Pixel{255.0F, 51.0F, 102.0F, 153.0F}));
}

TEST_F(BitmapPixelTest, PixelColorIsWrittenEvenWhenTheLibraryRefuses) {
    for (const Bitmap& bitmap : {allocated(FIT_BITMAP, 2, 2, 8), allocated(FIT_RGBF, 2, 2, 96)}) {
        qutil::EColor4f color{-1.0F, -1.0F, -1.0F, -1.0F};
        EXPECT_EQ(bitmap->getPixelColor(0, 0, &color), 0x80004005U);
        EXPECT_NE(color.r, -1.0F);
        EXPECT_NE(color.a, -1.0F);
    }
    qutil::EColor4f color{-1.0F, -1.0F, -1.0F, -1.0F};
    EXPECT_EQ(painted(2, 2)->getPixelColor(5, 5, &color), 0x80004005U) << "outside";
    EXPECT_NE(color.g, -1.0F);
}

TEST_F(BitmapPixelTest, PixelColorOfAnEmptyObjectIsNotReady) {
    qutil::EColor4f color{-1.0F, -1.0F, -1.0F, -1.0F};
    EXPECT_EQ(newBitmap()->getPixelColor(0, 0, &color), 0x80000100U);
    EXPECT_EQ(color.r, -1.0F);
}

TEST_F(BitmapPixelTest, PaletteHas256EntriesOfTheCallers) {
    const tov::TovRef bitmap(LinkedBitmap::create());
    bitmap->allocate(FIT_BITMAP, 2, 2, 8);
    FreeImage_GetPalette(bitmap->getBitmap())[9] = {51, 102, 255, 0}; // blue first
    tov::Sequence<qutil::EColor3f> palette{};
    ASSERT_EQ(bitmap->getPalette(&palette), 0U);
    ASSERT_EQ(palette.count, 256U);
    EXPECT_EQ(palette.data[9].r, 1.0F);
    EXPECT_EQ(palette.data[9].g, 102.0F / 255.0F);
    EXPECT_EQ(palette.data[9].b, 51.0F / 255.0F);
    EXPECT_EQ(palette.data[255].r, 1.0F) << "grey ramp of a new bitmap";
    tov::tovFree(palette.data);
}

TEST_F(BitmapPixelTest, PaletteOfShallowBitmapsHas256EntriesToo) {
    for (const int depth : {1, 4}) {
        tov::Sequence<qutil::EColor3f> palette{};
        ASSERT_EQ(allocated(FIT_BITMAP, 2, 2, depth)->getPalette(&palette), 0U);
        EXPECT_EQ(palette.count, 256U);
        EXPECT_EQ(palette.data[0].r, 0.0F);
        tov::tovFree(palette.data);
    }
}

TEST_F(BitmapPixelTest, PaletteIsMissingWithARemark) {
    tov::Sequence<qutil::EColor3f> palette{77, nullptr};
    EXPECT_EQ(painted(2, 2)->getPalette(&palette), 1U);
    EXPECT_EQ(allocated(FIT_RGBF, 2, 2, 96)->getPalette(&palette), 1U);
    EXPECT_EQ(palette.count, 77U);
    EXPECT_EQ(palette.data, nullptr);
    EXPECT_TRUE(records().empty());
}

TEST_F(BitmapPixelTest, PaletteChecksThePointerFirst) {
    tov::Sequence<qutil::EColor3f> palette{77, nullptr};
    EXPECT_EQ(newBitmap()->getPalette(nullptr), 0x80070057U);
    EXPECT_EQ(newBitmap()->getPalette(&palette), 0x80000100U);
    EXPECT_EQ(palette.count, 77U);
}

TEST_F(BitmapPixelTest, ColorTypesAreTheLibrarys) {
    const auto typeOfColors = [](IFreeImage& bitmap) {
        ColorType type{};
        EXPECT_EQ(bitmap.getColorType(&type), 0U);
        return static_cast<int>(type);
    };
    EXPECT_EQ(typeOfColors(*allocated(FIT_BITMAP, 2, 2, 8)), 1);
    EXPECT_EQ(typeOfColors(*painted(2, 2, 24)), 2);
    EXPECT_EQ(typeOfColors(*allocated(FIT_BITMAP, 2, 2, 32)), 4) << "alpha 0 everywhere";
    const tov::TovRef bitmap(LinkedBitmap::create());
    bitmap->allocate(FIT_BITMAP, 2, 2, 1);
    RGBQUAD* palette = FreeImage_GetPalette(bitmap->getBitmap());
    palette[0] = {255, 255, 255, 0};
    palette[1] = {0, 0, 0, 0};
    EXPECT_EQ(typeOfColors(*bitmap), 0);
    palette[1] = {0, 0, 9, 0};
    EXPECT_EQ(typeOfColors(*bitmap), 3);
    const tov::TovRef inks(LinkedBitmap::create());
    inks->allocate(FIT_BITMAP, 2, 2, 32);
    FreeImage_GetICCProfile(inks->getBitmap())->flags |= FIICC_COLOR_IS_CMYK;
    EXPECT_EQ(typeOfColors(*inks), 5);
}

TEST_F(BitmapPixelTest, ColorTypeChecksThePointerFirst) {
    ColorType type = zqx::qfreeimage::CMYK;
    EXPECT_EQ(newBitmap()->getColorType(nullptr), 0x80070057U);
    EXPECT_EQ(newBitmap()->getColorType(&type), 0x80000100U);
    EXPECT_EQ(type, zqx::qfreeimage::CMYK);
}

#if defined(ZQX_CAN_INTERPOSE)

TEST_F(BitmapPixelTest, UnknownColorTypeIsUnexpected) {
    const Bitmap bitmap = painted(2, 2);
    ColorType type = zqx::qfreeimage::CMYK;
    const FaultScope fault(Fault::COLOR_TYPE);
    EXPECT_EQ(bitmap->getColorType(&type), 0x8000FFFFU);
    EXPECT_EQ(type, zqx::qfreeimage::CMYK);
    EXPECT_EQ(logTexts(), Texts{endText(0x8000FFFF)});
}

#endif

TEST_F(BitmapPixelTest, TransparentIndexIsTheLibrarys) {
    const tov::TovRef bitmap(LinkedBitmap::create());
    int index = -9;
    EXPECT_EQ(bitmap->getTransparentIndex(&index), 0x80000100U);
    EXPECT_EQ(index, -9);
    bitmap->allocate(FIT_BITMAP, 2, 2, 8);
    EXPECT_EQ(bitmap->getTransparentIndex(&index), 0U);
    EXPECT_EQ(index, -1);
    FreeImage_SetTransparentIndex(bitmap->getBitmap(), 17);
    EXPECT_EQ(bitmap->getTransparentIndex(&index), 0U);
    EXPECT_EQ(index, 17);
}

// --- Hashes

TEST_F(BitmapPixelTest, HashIsTheUtilityLibrarysOverAllLinesAndPadding) {
    const Bitmap bitmap = painted(3, 2);
    const auto expected = qutil::superFastHash(reinterpret_cast<const char*>(getLine(*bitmap, 0)), 12 * 2);
    EXPECT_EQ(static_cast<std::uint32_t>(computeHash(*bitmap)), expected);
}

TEST_F(BitmapPixelTest, EqualBitmapsHaveEqualHashes) {
    EXPECT_EQ(computeHash(*painted(3, 2)), computeHash(*painted(3, 2)));
}

TEST_F(BitmapPixelTest, HashChangesWithAPaddingByte) {
    const Bitmap bitmap = painted(3, 2);
    const int before = computeHash(*bitmap);
    getLine(*bitmap, 1)[11] ^= 1;
    EXPECT_NE(computeHash(*bitmap), before);
}

TEST_F(BitmapPixelTest, HashOfAnEmptyObjectIsNotReady) {
    int hash = -9;
    EXPECT_EQ(newBitmap()->getHash(&hash), 0x80000100U);
    EXPECT_EQ(newBitmap()->getHash(nullptr), 0x80000100U);
    EXPECT_EQ(hash, -9);
}

TEST_F(BitmapPixelTest, HashOfASizeThatIsZeroIn32BitsIsNotReady) {
    // 2^16 bytes a line and 2^16 lines, without memory for them.
    const Bitmap bitmap = headerOnly(16384, 65536, 32);
    ASSERT_EQ(readHeight(*bitmap), 65536);
    int hash = -9;
    EXPECT_EQ(bitmap->getHash(&hash), 0x80000100U);
    EXPECT_EQ(hash, -9);
}
