// The numbers for hosts are FreeImage's own.
#include <string>

#include <gtest/gtest.h>

#include <FreeImage.h>

#include <zqx/qfreeimage/Formats.h>

namespace {

using namespace zqx::qfreeimage;

struct Pair {
    std::int32_t ours;
    int theirs;
};

constexpr bool areEqual(const Pair* first, const Pair* last) {
    for (; first != last; ++first) {
        if (first->ours != first->theirs) {
            return false;
        }
    }
    return true;
}

constexpr Pair FORMATS[] = {
    {FORMAT_DETECT, FIF_UNKNOWN},    {FORMAT_BMP, FIF_BMP},           {FORMAT_ICO, FIF_ICO},
    {FORMAT_JPEG, FIF_JPEG},         {FORMAT_JNG, FIF_JNG},           {FORMAT_KOALA, FIF_KOALA},
    {FORMAT_LBM, FIF_LBM},           {FORMAT_MNG, FIF_MNG},           {FORMAT_PBM, FIF_PBM},
    {FORMAT_PBM_BINARY, FIF_PBMRAW}, {FORMAT_PCD, FIF_PCD},           {FORMAT_PCX, FIF_PCX},
    {FORMAT_PGM, FIF_PGM},           {FORMAT_PGM_BINARY, FIF_PGMRAW}, {FORMAT_PNG, FIF_PNG},
    {FORMAT_PPM, FIF_PPM},           {FORMAT_PPM_BINARY, FIF_PPMRAW}, {FORMAT_RAS, FIF_RAS},
    {FORMAT_TARGA, FIF_TARGA},       {FORMAT_TIFF, FIF_TIFF},         {FORMAT_WBMP, FIF_WBMP},
    {FORMAT_PSD, FIF_PSD},           {FORMAT_CUT, FIF_CUT},           {FORMAT_XBM, FIF_XBM},
    {FORMAT_XPM, FIF_XPM},           {FORMAT_DDS, FIF_DDS},           {FORMAT_GIF, FIF_GIF},
    {FORMAT_HDR, FIF_HDR},           {FORMAT_FAX_G3, FIF_FAXG3},      {FORMAT_SGI, FIF_SGI},
    {FORMAT_EXR, FIF_EXR},           {FORMAT_JPEG_2000, FIF_J2K},     {FORMAT_JP2, FIF_JP2},
    {FORMAT_PFM, FIF_PFM},           {FORMAT_PICT, FIF_PICT},         {FORMAT_CAMERA_RAW, FIF_RAW},
    {FORMAT_WEBP, FIF_WEBP},         {FORMAT_JPEG_XR, FIF_JXR},
};
static_assert(areEqual(std::begin(FORMATS), std::end(FORMATS)));

constexpr Pair TYPES[] = {
    {TYPE_UNKNOWN, FIT_UNKNOWN}, {TYPE_BITMAP, FIT_BITMAP}, {TYPE_UINT16, FIT_UINT16}, {TYPE_INT16, FIT_INT16},
    {TYPE_UINT32, FIT_UINT32},   {TYPE_INT32, FIT_INT32},   {TYPE_FLOAT, FIT_FLOAT},   {TYPE_DOUBLE, FIT_DOUBLE},
    {TYPE_COMPLEX, FIT_COMPLEX}, {TYPE_RGB16, FIT_RGB16},   {TYPE_RGBA16, FIT_RGBA16}, {TYPE_RGBF, FIT_RGBF},
    {TYPE_RGBAF, FIT_RGBAF},
};
static_assert(areEqual(std::begin(TYPES), std::end(TYPES)));

constexpr Pair FILTERS[] = {
    {RESCALE_BOX, FILTER_BOX},         {RESCALE_BICUBIC, FILTER_BICUBIC},        {RESCALE_BILINEAR, FILTER_BILINEAR},
    {RESCALE_BSPLINE, FILTER_BSPLINE}, {RESCALE_CATMULL_ROM, FILTER_CATMULLROM}, {RESCALE_LANCZOS, FILTER_LANCZOS3},
};
static_assert(areEqual(std::begin(FILTERS), std::end(FILTERS)));

constexpr Pair FLAGS[] = {
    {LOAD_WITHOUT_PIXELS, FIF_LOAD_NOPIXELS},
    {LOAD_JPEG_TURNED, JPEG_EXIFROTATE},
    {SAVE_BMP_RUN_LENGTHS, BMP_SAVE_RLE},
    {SAVE_EXR_FLOAT, EXR_FLOAT},
    {SAVE_EXR_UNCOMPRESSED, EXR_NONE},
    {SAVE_EXR_ZIP, EXR_ZIP},
    {SAVE_EXR_PIZ, EXR_PIZ},
    {SAVE_JPEG_SUPERB, JPEG_QUALITYSUPERB},
    {SAVE_JPEG_GOOD, JPEG_QUALITYGOOD},
    {SAVE_JPEG_NORMAL, JPEG_QUALITYNORMAL},
    {SAVE_JPEG_AVERAGE, JPEG_QUALITYAVERAGE},
    {SAVE_JPEG_BAD, JPEG_QUALITYBAD},
    {SAVE_JPEG_PROGRESSIVE, JPEG_PROGRESSIVE},
    {SAVE_JPEG_FULL_COLOR, JPEG_SUBSAMPLING_444},
    {SAVE_JPEG_OPTIMIZED, JPEG_OPTIMIZE},
    {SAVE_PNG_FASTEST, PNG_Z_BEST_SPEED},
    {SAVE_PNG_SMALLEST, PNG_Z_BEST_COMPRESSION},
    {SAVE_PNG_UNCOMPRESSED, PNG_Z_NO_COMPRESSION},
    {SAVE_PNG_INTERLACED, PNG_INTERLACED},
    {SAVE_TARGA_RUN_LENGTHS, TARGA_SAVE_RLE},
    {SAVE_TIFF_PACKBITS, TIFF_PACKBITS},
    {SAVE_TIFF_DEFLATE, TIFF_ADOBE_DEFLATE},
    {SAVE_TIFF_UNCOMPRESSED, TIFF_NONE},
    {SAVE_TIFF_LZW, TIFF_LZW},
    {SAVE_WEBP_LOSSLESS, WEBP_LOSSLESS},
    {SAVE_JPEG_XR_LOSSLESS, JXR_LOSSLESS},
};
static_assert(areEqual(std::begin(FLAGS), std::end(FLAGS)));

} // namespace

TEST(FormatsTest, EveryFormatOfTheLibraryHasAConstant) {
    EXPECT_EQ(FreeImage_GetFIFCount(), static_cast<int>(std::size(FORMATS)) - 1) << "and one is for none";
    for (const Pair& format : FORMATS) {
        EXPECT_EQ(FreeImage_GetFormatFromFIF(static_cast<FREE_IMAGE_FORMAT>(format.ours)) == nullptr,
                  format.ours == FORMAT_DETECT)
            << format.ours;
    }
}

TEST(FormatsTest, ConstantsAreTakenWhereNumbersAre) {
    static_assert((SAVE_JPEG_GOOD | SAVE_JPEG_PROGRESSIVE) == 0x2100);
    const int format = FORMAT_PNG;
    EXPECT_STREQ(FreeImage_GetFormatFromFIF(static_cast<FREE_IMAGE_FORMAT>(format)), "PNG");
}
