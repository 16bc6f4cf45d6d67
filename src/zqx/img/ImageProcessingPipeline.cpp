// The chain of adjustments, as a class and as hosts see it. Its parameter document is in PipelineParams.cpp.
#include <zqx/img/ImageProcessingPipeline.h>

#include <limits>
#include <optional>
#include <stdexcept>
#include <utility>

#include <qutil/Assert.h>
#include <qutil/MethodGuard.h>
#include <zqx/img/FreeImage.h>
#include <zqx/img/GaussianBlur.h>
#include <zqx/img/Sharpen.h>

#include "BitmapSize.h"
#include "kernels/filters/FilterWork.h"
#include "kernels/maths/Limit.h"
#include "kernels/samples/Convert.h"
#include "kernels/samples/PixelFormat.h"

#define ZQX_PIPELINE_SITE ZQX_METHOD_SITE("src/zqx/img/ImageProcessingPipeline")

namespace zqx::img {

namespace {

constexpr float SHARPEN_RADIUS = 1.0F;
constexpr float SHARPEN_THRESHOLD = 0.02F;
constexpr float STRENGTH_PER_SHARPNESS = 5.0F;
constexpr float SIGMA_PER_SOFTNESS = 6.0F;

/// Sharpens or softens one image into the other. @return false when the sharpness is neutral and nothing was done
bool adjustSharpness(float sharpness, const Image& source, const Image& target) {
    if (sharpness > 0.0F) {
        Sharpen sharpen;
        sharpen.setRadius(SHARPEN_RADIUS);
        sharpen.setThreshold(SHARPEN_THRESHOLD);
        sharpen.setStrength(STRENGTH_PER_SHARPNESS * sharpness);
        sharpen.setSrcImage(source);
        sharpen.setOutput(target);
        sharpen.execute();
        return true;
    }
    if (sharpness < 0.0F) {
        GaussianBlur blur;
        blur.setSigma(-SIGMA_PER_SOFTNESS * sharpness);
        blur.setSrcImage(source);
        blur.setOutput(target);
        blur.execute();
        return true;
    }
    return false;
}

constexpr int STANDARD_BITMAP = 1;

/// The far sides of highlight and shadow reach eight times as far inside as they do at the interface.
constexpr float INWARD = 8.0F;
constexpr float OUTWARD = 0.125F;

template <typename Value, typename Stored>
tov::Result store(const detail::MethodSite& site, const char* parameter, Value* pOut, const Stored& value) {
    if (pOut == nullptr) {
        return detail::nullArgument(site, parameter);
    }
    *pOut = static_cast<Value>(value);
    return tov::SUCCESS;
}

qutil::EColor3f toRecord(const Color& linear) {
    const Color encoded = linear.toSrgb();
    return {encoded.r, encoded.g, encoded.b};
}

Color fromRecord(const qutil::EColor3f& encoded) {
    return Color{encoded.r, encoded.g, encoded.b, 1.0F}.toLinear();
}

EColorGradingParams toRecord(const ColorGrading& grading) {
    const float highlight = grading.getHighlight();
    const float shadow = grading.getShadow();
    return {
        grading.getExposure(),
        grading.getContrast(),
        highlight > 0.0F ? highlight * OUTWARD : highlight,
        shadow < 0.0F ? shadow * OUTWARD : shadow,
        grading.getTemperature(),
        grading.getHue(),
        grading.getSaturation(),
        grading.getGradientMapIntensity(),
        toRecord(grading.getGradientMap().getColorAt(0)),
        toRecord(grading.getGradientMap().getColorAt(255)),
    };
}

/// The setters limit each value to its range, the same ranges as the interface's once it is scaled.
ColorGrading fromRecord(const EColorGradingParams& params) {
    ColorGrading grading;
    grading.setExposure(params.exposure);
    grading.setContrast(params.contrast);
    grading.setHighlight(params.highlight > 0.0F ? params.highlight * INWARD : params.highlight);
    grading.setShadow(params.shadow < 0.0F ? params.shadow * INWARD : params.shadow);
    grading.setTemperature(params.temperature);
    grading.setHue(params.hue);
    grading.setSaturation(params.saturation);
    grading.setGradientMapIntensity(params.gradientMapIntensity);
    grading.setGradientMap(ColorGradient(fromRecord(params.black), fromRecord(params.white)));
    return grading;
}

/// The encoded and the linear format of the same layout that a bitmap's bytes are seen in. Exchanging red and blue does
/// not matter to a conversion that treats them alike.
struct EncodedAndLinear {
    Image::Format encoded;
    Image::Format linear;
};

EncodedAndLinear formatsOfBitmap(Image::Format format) {
    switch (format) {
    case Image::SBGR8: return {Image::SRGB8, Image::RGB8};
    case Image::SBGRA8: return {Image::SRGBA8, Image::RGBA8};
    default: return {Image::SGRAY8, Image::GRAY8};
    }
}

/// Re-encodes a bitmap's bytes in place, from gamma-encoded to linear.
void freeImage2linear(FreeImage& bitmap) {
    const std::shared_ptr<Image> view = bitmap.asImage();
    const Image::Format format = view->getFormat();
    if (format != Image::SGRAY8 && format != Image::SBGR8 && format != Image::SBGRA8) {
        zqxAssert("!\"unexpected image format\"");
        return;
    }
    const EncodedAndLinear formats = formatsOfBitmap(format);
    const auto as = [&view](Image::Format seen) {
        return Image(view->getDataPtr(), view->getWidth(), view->getHeight(), seen, view->getByteRowStride());
    };
    kernels::convertPixels(as(formats.encoded), as(formats.linear));
}

/// Gives a component a bitmap of an image's size. Sizes that no bitmap has fail as those that no memory holds do.
tov::Result allocateFor(FreeImage& bitmap, const Image& image) {
    const std::optional<int> width = toBitmapSize(image.getWidth());
    const std::optional<int> height = toBitmapSize(image.getHeight());
    const std::optional<int> pixelBytes = toBitmapSize(image.getBytePixelStride());
    if (!width || !height || !pixelBytes || *pixelBytes > std::numeric_limits<int>::max() / 8) {
        return tov::FAILURE;
    }
    return bitmap.allocate(STANDARD_BITMAP, *width, *height, 8 * *pixelBytes);
}

bool isGammaEncoded(Image::Format format) {
    return kernels::isKnown(format) && kernels::pixelFormat(format).encoding == kernels::Encoding::GAMMA_BYTE;
}

/// Exchanges two values for as long as it lives.
template <typename T>
class TemporarySwap {
public:
    TemporarySwap(T& value, T other) : mValue(value), mSaved(std::exchange(value, std::move(other))) {}
    TemporarySwap(const TemporarySwap&) = delete;
    TemporarySwap& operator=(const TemporarySwap&) = delete;
    ~TemporarySwap() { mValue = std::move(mSaved); }

private:
    T& mValue;
    T mSaved;
};

} // namespace

ImageProcessingPipeline::ImageProcessingPipeline(long stages) : mActiveStages(static_cast<std::uint32_t>(stages)) {
}

ImageProcessingPipeline* ImageProcessingPipeline::create() {
    return new ImageProcessingPipeline(ALL_STAGES);
}

void ImageProcessingPipeline::setInputImage(std::shared_ptr<Image> image) {
    mSrcImage = std::move(image);
    mPreviewImage.reset();
}

void ImageProcessingPipeline::resetParams() {
    mInversionEnabled = false;
    mColorGrading = ColorGrading();
    mSharpness = range::SHARPNESS.neutral;
    mFlipX = false;
    mFlipY = false;
}

bool ImageProcessingPipeline::hasDefaultParams() const {
    return mColorGrading.compare(ColorGrading()) == 0 && !mInversionEnabled && mSharpness == range::SHARPNESS.neutral &&
           !mFlipX && !mFlipY;
}

void ImageProcessingPipeline::execute(Image& out) const {
    if (!mSrcImage || !kernels::haveSameSize(*mSrcImage, out)) {
        return;
    }
    const auto isActive = [this](std::uint32_t stages) { return (mActiveStages & stages) != 0; };

    Image current(*mSrcImage); // view of the result of the stages run so far
    const Image outView(out);
    if (isActive(STAGE_INVERSION) && mInversionEnabled) {
        kernels::bringInto(current, out);
        out.invert(mInversionChannels);
        current = outView;
    }
    if (isActive(STAGE_COLOR_GRADING | STAGE_GRADIENT_MAP)) {
        mColorGrading.apply(current, out);
        current = outView;
    }
    if (isActive(STAGE_SHARPEN) && adjustSharpness(mSharpness, current, out)) {
        current = outView;
    }
    if (current.getDataPtr() != out.getDataPtr()) {
        kernels::bringInto(current, out);
    }
    if (isActive(STAGE_FLIP)) {
        if (mFlipX) {
            out.flipHorizontal();
        }
        if (mFlipY) {
            out.flipVertical();
        }
    }
}

// The face for hosts: every method follows the convention of component methods.

tov::Result ImageProcessingPipeline::setInputImage(IFreeImage* pFreeImage) {
    return detail::guarded(ZQX_PIPELINE_SITE, [&] {
        auto* bitmap = dynamic_cast<FreeImage*>(pFreeImage);
        if (bitmap == nullptr) {
            throw std::invalid_argument("the input is not a bitmap component of this module");
        }
        setInputImage(bitmap->asImage());
        return tov::SUCCESS;
    });
}

tov::Result ImageProcessingPipeline::getInversionEnabled(int* pEnabled) {
    return store(ZQX_PIPELINE_SITE, "pEnabled", pEnabled, mInversionEnabled);
}

tov::Result ImageProcessingPipeline::setInversionEnabled(int enabled) {
    mInversionEnabled = enabled != 0;
    return tov::SUCCESS;
}

tov::Result ImageProcessingPipeline::getColorGradingParams(EColorGradingParams* pParams) {
    return getColorGradingParams(mColorGrading, pParams);
}

tov::Result ImageProcessingPipeline::getDefaultColorGradingParams(EColorGradingParams* pParams) {
    if (pParams == nullptr) {
        return getColorGradingParams(mColorGrading, pParams); // refused there, for both
    }
    // Guarded here as well: making the defaults takes memory.
    return detail::guarded(ZQX_PIPELINE_SITE, [&] { return getColorGradingParams(ColorGrading(), pParams); });
}

tov::Result ImageProcessingPipeline::getColorGradingParams(const ColorGrading& grading,
                                                           EColorGradingParams* pParams) const {
    const detail::MethodSite site = ZQX_PIPELINE_SITE;
    if (pParams == nullptr) {
        return detail::nullArgument(site, "pParams");
    }
    return detail::guarded(site, [&] {
        *pParams = toRecord(grading);
        return tov::SUCCESS;
    });
}

tov::Result ImageProcessingPipeline::setColorGradingParams(const EColorGradingParams& params) {
    return detail::guarded(ZQX_PIPELINE_SITE, [&] {
        mColorGrading = fromRecord(params);
        return tov::SUCCESS;
    });
}

tov::Result ImageProcessingPipeline::getSharpness(float* pStrength) {
    return store(ZQX_PIPELINE_SITE, "pStrength", pStrength, mSharpness);
}

tov::Result ImageProcessingPipeline::setSharpness(float strength) {
    return detail::guarded(ZQX_PIPELINE_SITE, [&] {
        mSharpness = kernels::limit(strength, range::SHARPNESS.minimum, range::SHARPNESS.maximum);
        return tov::SUCCESS;
    });
}

tov::Result ImageProcessingPipeline::getFlipHorizontal(int* pFlipHorizontal) {
    return store(ZQX_PIPELINE_SITE, "pFlipHorizontal", pFlipHorizontal, mFlipX);
}

tov::Result ImageProcessingPipeline::setFlipHorizontal(int flip) {
    mFlipX = flip != 0;
    return tov::SUCCESS;
}

tov::Result ImageProcessingPipeline::getFlipVertical(int* pFlipVertical) {
    return store(ZQX_PIPELINE_SITE, "pFlipVertical", pFlipVertical, mFlipY);
}

tov::Result ImageProcessingPipeline::setFlipVertical(int flip) {
    mFlipY = flip != 0;
    return tov::SUCCESS;
}

tov::Result ImageProcessingPipeline::getActiveStages(int* pStageFlags) {
    return store(ZQX_PIPELINE_SITE, "pStageFlags", pStageFlags, mActiveStages);
}

tov::Result ImageProcessingPipeline::setActiveStages(int stageFlags) {
    mActiveStages = static_cast<std::uint32_t>(stageFlags);
    return tov::SUCCESS;
}

tov::Result ImageProcessingPipeline::execute(IFreeImage** pOutImage) {
    const detail::MethodSite site = ZQX_PIPELINE_SITE;
    if (!mSrcImage) {
        detail::logMethod(site, "mSrcImage");
        return tov::NOT_READY;
    }
    if (pOutImage == nullptr) {
        return detail::nullArgument(site, "pOutImage");
    }
    return detail::guarded(site, [&]() -> tov::Result {
        const tov::TovRef<FreeImage> bitmap(FreeImage::create());
        const tov::Result allocated = allocateFor(*bitmap, *mSrcImage);
        if (tov::failed(allocated) && !zqxAssert(qutil::tovStrError(allocated))) {
            return allocated;
        }
        execute(*bitmap->asImage());
        if (!isGammaEncoded(mSrcImage->getFormat())) {
            freeImage2linear(*bitmap);
        }
        bitmap->addRef(); // the caller's
        *pOutImage = bitmap.get();
        return tov::SUCCESS;
    });
}

tov::Result ImageProcessingPipeline::executePreview(unsigned int width, unsigned int height,
                                                    IFreeImage** pPreviewImage) {
    const detail::MethodSite site = ZQX_PIPELINE_SITE;
    if (!mSrcImage) {
        detail::logMethod(site, "mSrcImage.get()");
        return tov::NOT_READY;
    }
    if (pPreviewImage == nullptr) {
        return detail::nullArgument(site, "pPreviewImage");
    }
    return detail::guarded(site, [&] {
        if (mPreviewImage && (mPreviewImage->getWidth() != width || mPreviewImage->getHeight() != height)) {
            mPreviewImage.reset();
        }
        if (!mPreviewImage) {
            mPreviewImage = mSrcImage->scale(width, height);
        }
        const TemporarySwap source(mSrcImage, mPreviewImage);
        return execute(pPreviewImage);
    });
}

} // namespace zqx::img
