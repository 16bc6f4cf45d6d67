/// @file
/// The chain of adjustments over one source image, and its parameter document.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <qutil/InterfaceAdapter.h>
#include <zqx/img/ColorGrading.h>
#include <zqx/img/Export.h>
#include <zqx/img/IImageProcessingPipeline.h>
#include <zqx/img/Image.h>
#include <zqx/img/ParameterRanges.h>

namespace zqx::img {

/// Renders a source image through inversion, colour grading, sharpening or softening, and flips, in this order.
///
/// A stage runs when its bit is set in the stage mask; inversion, sharpness and flips also need a parameter that asks
/// for them. Grading runs whenever its bit is set, neutral or not.
///
/// The source is shared, not copied. A pipeline is used as a plain value by programs that link the library, and as a
/// component (see IImageProcessingPipeline) by hosts; a copy copies the component's reference count too.
///
/// Thread-safety: references on any thread, everything else one thread at a time per pipeline.
/// @ingroup pipeline
class ZQX_IMG_API ImageProcessingPipeline
    : public TovInterfaceAdapter<IImageProcessingPipeline_Adapter, detail::NoInterfaceProvider,
                                 IImageProcessingPipeline_Adapter> {
public:
    /// Bits of the stage mask. Either of the two grading bits runs the whole grading, gradient map included.
    enum Stage : std::uint32_t {
        STAGE_INVERSION = 1,     ///< the negative
        STAGE_COLOR_GRADING = 2, ///< the whole grading
        STAGE_GRADIENT_MAP = 4,  ///< the whole grading too
        STAGE_SHARPEN = 8,       ///< sharpening or softening
        STAGE_FLIP = 16,         ///< both flips
    };
    /// Every stage, also those to come.
    static constexpr long ALL_STAGES = 65535;

    /// Neutral parameters, no source. @param stages stage mask
    explicit ImageProcessingPipeline(long stages);

    /// A new component with a count of 0 and all stages active.
    static ImageProcessingPipeline* create();

    /// Sets the source image; an empty pointer removes it. Drops the cached preview.
    void setInputImage(std::shared_ptr<Image> image);
    /// As described at IImageProcessingPipeline::setInputImage.
    tov::Result setInputImage(IFreeImage* pFreeImage) override;

    /// @name What the pipeline holds
    /// @{

    /// The source image, or an empty pointer. It is shared, and may be looked at only.
    std::shared_ptr<const Image> getInputImage() const { return mSrcImage; }
    /// The stage mask.
    std::uint32_t getActiveStages() const { return mActiveStages; }
    /// Whether the inversion stage inverts.
    bool isInversionEnabled() const { return mInversionEnabled; }
    /// Above 0 sharpens, below 0 softens; limited to range::SHARPNESS.
    float getSharpness() const { return mSharpness; }
    /// Whether left and right are mirrored.
    bool isFlippedHorizontally() const { return mFlipX; }
    /// Whether top and bottom are mirrored.
    bool isFlippedVertically() const { return mFlipY; }
    /// @}

    /// Channels that the inversion stage inverts.
    Channel getInversionChannels() const { return mInversionChannels; }
    /// Channels that the inversion stage inverts; red, green and blue by default. Not validated.
    void setInversionChannels(Channel channels) { mInversionChannels = channels; }

    /// The grading settings.
    const ColorGrading& getColorGrading() const { return mColorGrading; }
    /// Replaces all grading settings; they are copied.
    void setColorGrading(const ColorGrading& grading) { mColorGrading = grading; }

    /// @name The interface
    /// @{

    /// As described at the method of the same name in IImageProcessingPipeline.
    tov::Result getInversionEnabled(int* pEnabled) override;
    tov::Result setInversionEnabled(int enabled) override;
    tov::Result getColorGradingParams(EColorGradingParams* pParams) override;
    tov::Result setColorGradingParams(const EColorGradingParams& params) override;
    tov::Result getDefaultColorGradingParams(EColorGradingParams* pParams) override;
    tov::Result getSharpness(float* pStrength) override;
    tov::Result setSharpness(float strength) override;
    tov::Result getFlipHorizontal(int* pFlipHorizontal) override;
    tov::Result setFlipHorizontal(int flip) override;
    tov::Result getFlipVertical(int* pFlipVertical) override;
    tov::Result setFlipVertical(int flip) override;
    tov::Result getActiveStages(int* pStageFlags) override;
    tov::Result setActiveStages(int stageFlags) override;
    tov::Result execute(IFreeImage** pOutImage) override;
    tov::Result executePreview(unsigned int width, unsigned int height, IFreeImage** pPreviewImage) override;
    /// @}

    /// Neutral parameters again; channel mask, stage mask and images stay.
    void resetParams();
    /// True when grading, inversion, sharpness and flips are all neutral.
    bool hasDefaultParams() const;

    /// Renders into the destination, in the destination's format.
    ///
    /// Does nothing without a source, or when the destination's width or height differs from the source's. The
    /// destination must not overlap the source.
    /// @throws std::bad_alloc from the sharpness stage
    void execute(Image& out) const;

    /// The parameters as a JSON document: no source, channel mask or stage mask. Floats keep their exact value; a
    /// NaN or infinity leaves its member without a value, and the document then does not parse.
    /// Of the gradient map the first and the last table entry are written (linear r, g, b, a).
    std::string saveParams() const;

    /// Replaces the parameters by those of a document; members that are missing or of the wrong type become neutral,
    /// values outside their range are limited to it.
    /// @return false, with nothing changed, for text that is not JSON, or is not a version 1 parameter document
    bool loadParams(const std::string& text);

private:
    tov::Result getColorGradingParams(const ColorGrading& grading, EColorGradingParams* pParams) const;

    bool mInversionEnabled = false;
    Channel mInversionChannels = static_cast<Channel>(Red | Green | Blue);
    ColorGrading mColorGrading;
    float mSharpness = range::SHARPNESS.neutral;
    bool mFlipX = false;
    bool mFlipY = false;
    std::shared_ptr<Image> mSrcImage;
    std::shared_ptr<Image> mPreviewImage;
    std::uint32_t mActiveStages;
};

} // namespace zqx::img
