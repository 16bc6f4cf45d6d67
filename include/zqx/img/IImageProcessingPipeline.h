/// @file
/// The interface of the pipeline component.
#pragma once

#include <qutil/Color.h>
#include <tov/IUnknown.h>
#include <tov/Result.h>
#include <zqx/qfreeimage/IFreeImage.h>

namespace zqx::img {

/// The bitmap interface, which is what pipelines take and hand out.
using qfreeimage::IFreeImage;

/// Grading values as they cross the interface: fourteen floats.
///
/// Ranges are those of ParameterRanges.h, but highlight and shadow are symmetric here; inside, highlights above 0 and
/// shadows below 0 reach eight times as far. The gradient's colours are gamma-encoded here and linear inside.
/// @ingroup components
struct EColorGradingParams {
    float exposure;             ///< stops, as range::EXPOSURE
    float contrast;             ///< as range::CONTRAST
    float highlight;            ///< -1 to 1
    float shadow;               ///< -1 to 1
    float temperature;          ///< kelvin, as range::TEMPERATURE
    float hue;                  ///< degrees, as range::HUE
    float saturation;           ///< as range::SATURATION
    float gradientMapIntensity; ///< as range::GRADIENT_MAP_INTENSITY
    qutil::EColor3f black;      ///< gradient's colour for black, gamma-encoded
    qutil::EColor3f white;      ///< gradient's colour for white, gamma-encoded
};

/// Adjusts bitmaps: takes a bitmap component, holds parameters, and hands out results as new bitmap components.
///
/// Every method returns a result code (tov/Result.h): tov::INVALID_ARGUMENT for a null pointer, tov::UNEXPECTED when an
/// exception escaped; both are logged. Integers count as true when non-zero.
///
/// Thread-safety: references on any thread, everything else one thread at a time per pipeline.
/// @ingroup components
class IImageProcessingPipeline : public tov::IUnknown {
public:
    /// The interface's identifier.
    static constexpr const char* IID = "IDL:zqx/img/IImageProcessingPipeline:1.0";

    /// Takes a bitmap of this module as the source and keeps a reference on it. The bitmap must stay loaded. Any other
    /// implementation of the interface, or null, is tov::UNEXPECTED.
    virtual tov::Result setInputImage(IFreeImage* pFreeImage) = 0;
    /// 1 when the inversion stage inverts, else 0.
    virtual tov::Result getInversionEnabled(int* pEnabled) = 0;
    /// Inverts red, green and blue in linear light, before all else.
    virtual tov::Result setInversionEnabled(int enabled) = 0;
    /// The grading, in the record's units.
    virtual tov::Result getColorGradingParams(EColorGradingParams* pParams) = 0;
    /// Values outside their range are limited to it; NaN passes. Replaces the gradient map.
    virtual tov::Result setColorGradingParams(const EColorGradingParams& params) = 0;
    /// A neutral grading, whatever this pipeline's is.
    virtual tov::Result getDefaultColorGradingParams(EColorGradingParams* pParams) = 0;
    /// The strength as kept, -1 to 1.
    virtual tov::Result getSharpness(float* pStrength) = 0;
    /// Above 0 sharpens (strength 5 times this), below 0 blurs (sigma -6 times this pixels); limited to [-1, 1].
    virtual tov::Result setSharpness(float strength) = 0;
    /// 1 when left and right are mirrored, else 0.
    virtual tov::Result getFlipHorizontal(int* pFlipHorizontal) = 0;
    /// Mirrors left and right, after all else.
    virtual tov::Result setFlipHorizontal(int flip) = 0;
    /// 1 when top and bottom are mirrored, else 0.
    virtual tov::Result getFlipVertical(int* pFlipVertical) = 0;
    /// Mirrors top and bottom, after all else.
    virtual tov::Result setFlipVertical(int flip) = 0;
    /// Mask: 1 inversion, 2 and 4 colour grading, 8 sharpening and blur, 16 flips.
    virtual tov::Result getActiveStages(int* pStageFlags) = 0;
    /// Chooses the stages that run, by the same bits; inactive ones keep their parameters.
    virtual tov::Result setActiveStages(int stageFlags) = 0;
    /// Renders the source into a new 8-bit bitmap with one reference, owned by the caller. tov::NOT_READY without a
    /// source. A linear 8-bit source gives linear bytes, an encoded one encoded bytes.
    virtual tov::Result execute(IFreeImage** pOutImage) = 0;
    /// The same on a copy of the source resampled (Lanczos) to exactly width x height, which is kept for further
    /// previews of that size. tov::NOT_READY without a source, or when the source cannot be resampled.
    virtual tov::Result executePreview(unsigned int width, unsigned int height, IFreeImage** pPreviewImage) = 0;

protected:
    /// @{

    /// For components alone: they end through release().
    IImageProcessingPipeline() = default;
    IImageProcessingPipeline(const IImageProcessingPipeline&) = default;
    IImageProcessingPipeline& operator=(const IImageProcessingPipeline&) = default;
    ~IImageProcessingPipeline() = default;
    /// @}
};

/// The interface with the plain slots of its base implemented.
/// @ingroup components
class IImageProcessingPipeline_Adapter : public tov::UnknownAdapter<IImageProcessingPipeline> {
protected:
    /// @{

    /// For components alone: they end through release().
    IImageProcessingPipeline_Adapter() = default;
    IImageProcessingPipeline_Adapter(const IImageProcessingPipeline_Adapter&) = default;
    IImageProcessingPipeline_Adapter& operator=(const IImageProcessingPipeline_Adapter&) = default;
    ~IImageProcessingPipeline_Adapter() = default;
    /// @}
};

} // namespace zqx::img
