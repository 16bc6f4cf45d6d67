// denoise: what comes out, with the real denoiser. Expected pixels come from the library, called as a renderer calls
// it.
#include <algorithm>
#include <cmath>

#include <zqx/img/DenoisingFilter.h>

#include "cli/Pictures.h"
#include "cli/Program.h"
#include "cli/commands/Render.h"

namespace zqx::img::test {

namespace {

/// A test with guides in floats.
class DenoisedPictureTest : public ProgramTest {
protected:
    DenoisedPictureTest() {
        writePicture(at("albedo.exr"), floatBitmap(sampleRender().albedo), EXR_FLOAT);
        writePicture(at("normal.exr"), floatBitmap(sampleRender().normal), EXR_FLOAT);
    }

    std::vector<std::string> denoise(const std::string& in, const std::string& out,
                                     const std::string& normal = "normal.exr") const {
        return {"denoise", at(in), "--albedo", at("albedo.exr"), "--normal", at(normal), "-o", at(out)};
    }

    std::vector<std::string> denoiseDisplayed(const std::string& in, const std::string& out) const {
        std::vector<std::string> command = denoise(in, out);
        command.emplace_back("--ldr");
        return command;
    }
};

class DenoisedFloatTest : public DenoisedPictureTest, public ::testing::WithParamInterface<const char*> {};

Raster denoisedSample(const Raster& noisy, bool hdr) {
    return denoised(noisy, sampleRender().albedo, sampleRender().normal, hdr);
}

/// The sample's colours as 8-bit pictures store them.
Raster storedNoisy() {
    return getRaster(byteBitmap(changed(sampleRender().noisy, encoded)));
}
Raster storedClean() {
    return getRaster(byteBitmap(changed(sampleRender().clean, encoded)));
}

/// In linear light the denoiser measures the exposure with all threads at once, whose sums differ in their last bits
/// from run to run. Denoised upside down, the sample comes out thousands of times as far away.
constexpr double LAST_BITS = 0.005;

/// The largest difference, in steps of a byte.
double farthest(const Raster& a, const Raster& b) {
    double most = 0.0;
    for (std::size_t i = 0; i < a.values.size(); ++i) {
        most = std::max(most, 255.0 * std::abs(static_cast<double>(a.values[i]) - static_cast<double>(b.values[i])));
    }
    return most;
}

/// The picture with another alpha at every pixel.
Bitmap withAlpha(const Bitmap& bitmap, const Raster& alpha) {
    const bool isFloat = FreeImage_GetImageType(bitmap.get()) != FIT_BITMAP;
    const auto alphaAt = [&](unsigned x, unsigned y) { return alpha.values[(y * alpha.width + x) * 3]; };
    if (!isFloat) {
        return paint(alpha.width, alpha.height, 32, [&](unsigned x, unsigned y) {
            Rgba color = pixelAt(bitmap, x, y);
            color.a = static_cast<int>(std::lround(255.0F * alphaAt(x, y)));
            return color;
        });
    }
    // FreeImage's own conversion would limit colours to [0, 1].
    Bitmap result(FreeImage_AllocateT(FIT_RGBAF, static_cast<int>(alpha.width), static_cast<int>(alpha.height)));
    for (unsigned y = 0; y < alpha.height; ++y) {
        BYTE* row = FreeImage_GetScanLine(result.get(), static_cast<int>(alpha.height - 1 - y));
        for (unsigned x = 0; x < alpha.width; ++x) {
            const float* color = floatsAt(bitmap, x, y);
            reinterpret_cast<FIRGBAF*>(row)[x] = {color[0], color[1], color[2], alphaAt(x, y)};
        }
    }
    return result;
}

WORD* wordsAt(const Bitmap& bitmap, unsigned y) {
    const unsigned row = FreeImage_GetHeight(bitmap.get()) - 1 - y;
    return reinterpret_cast<WORD*>(FreeImage_GetScanLine(bitmap.get(), static_cast<int>(row)));
}

/// A bitmap of 16 bits per channel; 0 to 1 become codes by rounding.
Bitmap deepBitmap(const Raster& raster) {
    Bitmap bitmap(FreeImage_AllocateT(FIT_RGB16, static_cast<int>(raster.width), static_cast<int>(raster.height)));
    for (std::size_t i = 0; i < raster.values.size(); ++i) {
        const std::size_t row = 3 * raster.width;
        const float limited = std::clamp(raster.values[i], 0.0F, 1.0F);
        wordsAt(bitmap, static_cast<unsigned>(i / row))[i % row] = static_cast<WORD>(std::lround(65535.0F * limited));
    }
    return bitmap;
}

/// The same way back.
Raster rasterOfDeep(const Bitmap& bitmap) {
    EXPECT_EQ(FreeImage_GetImageType(bitmap.get()), FIT_RGB16);
    Raster raster{FreeImage_GetWidth(bitmap.get()), FreeImage_GetHeight(bitmap.get()), {}};
    for (unsigned y = 0; y < raster.height; ++y) {
        for (unsigned i = 0; i < 3 * raster.width; ++i) {
            raster.values.push_back(static_cast<float>(wordsAt(bitmap, y)[i]) / 65535.0F);
        }
    }
    return raster;
}

/// A step of 16 bits, in steps of a byte.
constexpr double DEEP_STEP = 255.0 / 65535.0;

/// Every byte occurs.
Raster motleyAlpha() {
    Raster alpha = sampleRender().clean;
    for (std::size_t i = 0; i < alpha.values.size(); ++i) {
        alpha.values[i] = static_cast<float>(i / 3 % 256) / 255.0F;
    }
    return alpha;
}

} // namespace

TEST_P(DenoisedFloatTest, NoiseFallsAndThePictureStaysFloatAndUpright) {
    const std::string in = std::string("in.") + GetParam();
    const std::string out = std::string("out.") + GetParam();
    writePicture(at(in), floatBitmap(sampleRender().noisy), GetParam() == std::string("exr") ? EXR_FLOAT : 0);
    succeed(denoise(in, out));
    const Bitmap result = readPicture(at(out));
    EXPECT_EQ(FreeImage_GetImageType(result.get()), FIT_RGBF);
    EXPECT_LT(distance(getRaster(result), sampleRender().clean),
              distance(sampleRender().noisy, sampleRender().clean) / 4.0);
}

INSTANTIATE_TEST_SUITE_P(EachFormat, DenoisedFloatTest, ::testing::Values("exr", "pfm", "hdr", "tif"),
                         [](const auto& test) { return std::string(test.param); });

TEST_F(DenoisedPictureTest, FloatsAreWhatTheLibraryMakesOfUprightRows) {
    writePicture(at("in.pfm"), floatBitmap(sampleRender().noisy));
    succeed(denoise("in.pfm", "out.pfm"));
    EXPECT_LT(farthest(getRaster(readPicture(at("out.pfm"))), denoisedSample(sampleRender().noisy, true)), LAST_BITS);
}

TEST_F(DenoisedPictureTest, LinearIsTheDefault) {
    writePicture(at("in.pfm"), floatBitmap(sampleRender().noisy));
    succeed(denoise("in.pfm", "default.pfm"));
    std::vector<std::string> command = denoise("in.pfm", "linear.pfm");
    command.emplace_back("--hdr");
    succeed(command);
    EXPECT_LT(farthest(getRaster(readPicture(at("default.pfm"))), getRaster(readPicture(at("linear.pfm")))), LAST_BITS);
}

TEST_F(DenoisedPictureTest, DisplayReferredFloatsGoToTheLibraryAsTheyAre) {
    const Raster noisy = storedNoisy();
    writePicture(at("in.pfm"), floatBitmap(noisy));
    succeed(denoiseDisplayed("in.pfm", "out.pfm"));
    EXPECT_EQ(farthest(getRaster(readPicture(at("out.pfm"))), denoisedSample(noisy, false)), 0.0);
}

TEST_F(DenoisedPictureTest, BytesAreDenoisedInLinearLightAndRounded) {
    writePicture(at("in.png"), byteBitmap(storedNoisy()));
    succeed(denoise("in.png", "out.png"));
    const Bitmap out = readPicture(at("out.png"));
    EXPECT_EQ(FreeImage_GetBPP(out.get()), 24U);
    const Raster result = getRaster(out);
    const Raster inFloats = changed(denoisedSample(changed(storedNoisy(), decoded), true), encoded);
    EXPECT_LT(farthest(result, inFloats), 0.51); // half a step, and the rounding of powers
    EXPECT_LT(distance(result, storedClean()), distance(storedNoisy(), storedClean()) / 4.0);
}

TEST_F(DenoisedPictureTest, DisplayReferredBytesGoToTheLibraryAsStored) {
    writePicture(at("in.png"), byteBitmap(storedNoisy()));
    succeed(denoiseDisplayed("in.png", "out.png"));
    EXPECT_LT(farthest(getRaster(readPicture(at("out.png"))), denoisedSample(storedNoisy(), false)), 0.51);
}

TEST_F(DenoisedPictureTest, DisplayReferredBytesBecomeLinearFloats) {
    writePicture(at("in.png"), byteBitmap(storedNoisy()));
    succeed(denoiseDisplayed("in.png", "out.exr"));
    const Raster expected = changed(denoisedSample(storedNoisy(), false), decoded);
    EXPECT_LT(farthest(getRaster(readPicture(at("out.exr"))), expected), 0.01);
}

TEST_F(DenoisedPictureTest, DisplayReferredFloatsBecomeBytesAsTheyAre) {
    writePicture(at("in.pfm"), floatBitmap(storedNoisy()));
    const Outcome outcome = zqxImg(denoiseDisplayed("in.pfm", "out.bmp"));
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_NE(outcome.err.find("this format has 8 bits per channel"), std::string::npos) << outcome.err;
    EXPECT_LT(farthest(getRaster(readPicture(at("out.bmp"))), denoisedSample(storedNoisy(), false)), 0.51);
}

TEST_F(DenoisedPictureTest, SixteenBitsStayAndAreRounded) {
    const Bitmap noisy = deepBitmap(changed(sampleRender().noisy, encoded));
    writePicture(at("in.png"), noisy);
    succeed(denoise("in.png", "out.tif"));
    const Raster inFloats = changed(denoisedSample(changed(rasterOfDeep(noisy), decoded), true), encoded);
    EXPECT_LT(farthest(rasterOfDeep(readPicture(at("out.tif"))), inFloats), 0.51 * DEEP_STEP + LAST_BITS);
}

TEST_F(DenoisedPictureTest, DisplayReferredSixteenBitsGoToTheLibraryAsStored) {
    const Bitmap noisy = deepBitmap(changed(sampleRender().noisy, encoded));
    writePicture(at("in.png"), noisy);
    succeed(denoiseDisplayed("in.png", "out.png"));
    const Raster expected = denoisedSample(rasterOfDeep(noisy), false);
    EXPECT_LT(farthest(rasterOfDeep(readPicture(at("out.png"))), expected), 0.7 * DEEP_STEP); // powers there and back
}

TEST_F(DenoisedPictureTest, DisplayReferredFloatsBecomeSixteenBitsAsTheyAre) {
    writePicture(at("in.pfm"), floatBitmap(storedNoisy()));
    EXPECT_EQ(zqxImg(denoiseDisplayed("in.pfm", "out.png")).exitCode, 0);
    EXPECT_LT(farthest(rasterOfDeep(readPicture(at("out.png"))), denoisedSample(storedNoisy(), false)),
              0.7 * DEEP_STEP);
}

TEST_F(DenoisedPictureTest, SixteenBitsOfNormalsAreExpanded) {
    const Raster halved = changed(sampleRender().normal, [](float v) { return v == 0.0F ? 0.0F : 0.5F * v + 0.5F; });
    const Bitmap stored = deepBitmap(halved);
    writePicture(at("normal.png"), stored);
    writePicture(at("in.pfm"), floatBitmap(sampleRender().noisy));
    succeed(denoise("in.pfm", "out.pfm", "normal.png"));
    Raster normal = changed(rasterOfDeep(stored), [](float v) { return 2.0F * v - 1.0F; });
    for (std::size_t i = 0; i < normal.values.size(); i += 3) {
        if (std::all_of(&normal.values[i], &normal.values[i] + 3, [](float v) { return v == -1.0F; })) {
            std::fill_n(&normal.values[i], 3, 0.0F); // black is no surface
        }
    }
    const Raster expected = denoised(sampleRender().noisy, sampleRender().albedo, normal, true);
    EXPECT_LT(distance(getRaster(readPicture(at("out.pfm"))), expected), 0.00001);
}

TEST_F(DenoisedPictureTest, JpegStaysJpegAndObeysTheQuality) {
    writePicture(at("in.jpg"), byteBitmap(storedNoisy()), JPEG_QUALITYSUPERB | JPEG_SUBSAMPLING_444);
    for (const char* quality : {"10", "95"}) {
        std::vector<std::string> command = denoise("in.jpg", std::string(quality) + ".jpg");
        command.insert(command.end(), {"--quality", quality});
        succeed(command);
    }
    const Raster result = getRaster(readPicture(at("95.jpg")));
    EXPECT_LT(distance(result, storedClean()), distance(storedNoisy(), storedClean()) / 4.0);
    EXPECT_LT(readFile(at("10.jpg")).size(), readFile(at("95.jpg")).size());
}

TEST_F(DenoisedPictureTest, GreyStaysGrey) {
    const Bitmap color = byteBitmap(storedNoisy());
    const Bitmap grey(FreeImage_ConvertToGreyscale(color.get()));
    const Bitmap cleanColor = byteBitmap(storedClean());
    const Bitmap cleanGrey(FreeImage_ConvertToGreyscale(cleanColor.get()));
    writePicture(at("in.png"), grey);
    succeed(denoise("in.png", "out.png"));
    const Bitmap result = readPicture(at("out.png"));
    EXPECT_EQ(FreeImage_GetColorType(result.get()), FIC_MINISBLACK);
    EXPECT_LT(distance(getRaster(result), getRaster(cleanGrey)), distance(getRaster(grey), getRaster(cleanGrey)) / 3.0);
}

TEST_F(DenoisedPictureTest, AlphaOfFloatsIsKeptAndHasNoSay) {
    const Bitmap source = withAlpha(floatBitmap(sampleRender().noisy), motleyAlpha());
    writePicture(at("in.exr"), source, EXR_FLOAT);
    succeed(denoise("in.exr", "out.exr"));
    const Bitmap result = readPicture(at("out.exr"));
    ASSERT_EQ(FreeImage_GetImageType(result.get()), FIT_RGBAF);
    EXPECT_LT(farthest(getRaster(result), denoisedSample(sampleRender().noisy, true)), LAST_BITS);
    EXPECT_TRUE(isIdentical(withAlpha(result, motleyAlpha()), result));
}

TEST_F(DenoisedPictureTest, AlphaOfBytesIsKeptAndHasNoSay) {
    writePicture(at("opaque.png"), byteBitmap(storedNoisy()));
    writePicture(at("in.png"), withAlpha(byteBitmap(storedNoisy()), motleyAlpha()));
    succeed(denoiseDisplayed("opaque.png", "out of opaque.png"));
    succeed(denoiseDisplayed("in.png", "out.png"));
    const Bitmap expected = withAlpha(readPicture(at("out of opaque.png")), motleyAlpha());
    EXPECT_TRUE(isIdentical(readPicture(at("out.png")), expected));
}

TEST_F(DenoisedPictureTest, LostAlphaIsTold) {
    writePicture(at("in.png"), withAlpha(byteBitmap(storedNoisy()), motleyAlpha()));
    const Outcome outcome = zqxImg(denoise("in.png", "out.jpg"));
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_NE(outcome.err.find("this format has no transparency"), std::string::npos) << outcome.err;
}

TEST_F(DenoisedPictureTest, BytesOfNormalsAreExpandedAndBlackIsNoSurface) {
    Raster halved = changed(sampleRender().normal, [](float v) { return 0.5F * v + 0.5F; });
    for (std::size_t i = 0; i < halved.values.size(); i += 3) {
        const auto first = sampleRender().normal.values.begin() + static_cast<std::ptrdiff_t>(i);
        if (std::all_of(first, first + 3, [](float v) { return v == 0.0F; })) {
            std::fill_n(halved.values.begin() + static_cast<std::ptrdiff_t>(i), 3, 0.0F);
        }
    }
    writePicture(at("normal.png"), byteBitmap(halved));
    writePicture(at("in.pfm"), floatBitmap(sampleRender().noisy));
    succeed(denoise("in.pfm", "out.pfm", "normal.png"));
    // A byte knows a direction to half a percent.
    EXPECT_LT(distance(getRaster(readPicture(at("out.pfm"))), denoisedSample(sampleRender().noisy, true)), 0.0005);
}

TEST_F(DenoisedPictureTest, BytesOfAlbedoAreDecoded) {
    const Raster stored = getRaster(byteBitmap(changed(sampleRender().albedo, encoded)));
    writePicture(at("albedo.png"), byteBitmap(stored));
    writePicture(at("in.pfm"), floatBitmap(sampleRender().noisy));
    std::vector<std::string> command = denoise("in.pfm", "out.pfm");
    std::ranges::replace(command, at("albedo.exr"), at("albedo.png"));
    succeed(command);
    const Raster expected = denoised(sampleRender().noisy, changed(stored, decoded), sampleRender().normal, true);
    EXPECT_LT(distance(getRaster(readPicture(at("out.pfm"))), expected), 0.00001);
}

TEST_F(DenoisedPictureTest, AlphaOfGuidesIsIgnored) {
    writePicture(at("in.pfm"), floatBitmap(sampleRender().noisy));
    succeed(denoise("in.pfm", "plain.pfm"));
    writePicture(at("albedo.exr"), withAlpha(floatBitmap(sampleRender().albedo), motleyAlpha()), EXR_FLOAT);
    writePicture(at("normal.exr"), withAlpha(floatBitmap(sampleRender().normal), motleyAlpha()), EXR_FLOAT);
    succeed(denoise("in.pfm", "out.pfm"));
    EXPECT_LT(farthest(getRaster(readPicture(at("out.pfm"))), getRaster(readPicture(at("plain.pfm")))), LAST_BITS);
}

TEST_F(DenoisedPictureTest, RunTwiceGivesTheSameFile) {
    writePicture(at("in.png"), byteBitmap(storedNoisy()));
    succeed(denoiseDisplayed("in.png", "once.png"));
    succeed(denoiseDisplayed("in.png", "twice.png"));
    EXPECT_TRUE(readFile(at("once.png")) == readFile(at("twice.png")));
}

TEST_F(DenoisedPictureTest, RunTwiceInLinearLightDiffersInTheLastBitsAtMost) {
    writePicture(at("in.exr"), floatBitmap(sampleRender().noisy), EXR_FLOAT);
    succeed(denoise("in.exr", "once.exr"));
    succeed(denoise("in.exr", "twice.exr"));
    EXPECT_LT(farthest(getRaster(readPicture(at("once.exr"))), getRaster(readPicture(at("twice.exr")))), LAST_BITS);
}

TEST_F(DenoisedPictureTest, InputMayBeTheOutput) {
    writePicture(at("in.png"), byteBitmap(storedNoisy()));
    succeed(denoiseDisplayed("in.png", "out.png"));
    succeed(denoiseDisplayed("in.png", "in.png"));
    EXPECT_TRUE(readFile(at("in.png")) == readFile(at("out.png")));
}

TEST_F(DenoisedPictureTest, ResolutionIsCarriedOver) {
    const Bitmap source = byteBitmap(storedNoisy());
    FreeImage_SetDotsPerMeterX(source.get(), 5906);
    writePicture(at("in.png"), source);
    succeed(denoise("in.png", "out.png"));
    EXPECT_EQ(FreeImage_GetDotsPerMeterX(readPicture(at("out.png")).get()), 5906U);
}

TEST_F(DenoisedPictureTest, MissingGuidesAreRefusedInTheFiltersWords) {
    Raster color = sampleRender().noisy;
    DenoisingFilter filter;
    filter.setInput(DenoisingFilter::COLOR, Image(color.values.data(), color.width, color.height, Image::RGB32F, 0));
    filter.setOutput(Image(color.values.data(), color.width, color.height, Image::RGB32F, 0));
    ASSERT_FALSE(filter.execute());
    writePicture(at("in.pfm"), floatBitmap(color));
    fail(1, {"denoise", at("in.pfm"), "-o", at("out.pfm")}, ": " + filter.getErrorMessage() + ":");
}

} // namespace zqx::img::test
