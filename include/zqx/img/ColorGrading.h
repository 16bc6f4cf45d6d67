/// @file
/// Colour grading: the settings a user moves, and their application to images and lookup tables.
#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include <zqx/img/ColorGradient.h>
#include <zqx/img/Export.h>
#include <zqx/img/Image.h>
#include <zqx/img/ParameterRanges.h>

namespace zqx::img {

/// Grading settings turned into what the per-pixel operation consumes, computed once per image.
///
/// Refers to the ColorGrading it was prepared from: valid while that is alive and unchanged.
/// @ingroup grading
struct ColorGradingParamsInternal {
    float exposureFactor = 1.0F;   ///< linear multiplier, 2^exposure
    float contrastExponent = 1.0F; ///< exponent of the contrast curve; exactly 1 skips it
    float highlight = 0.0F;        ///< slope added above 0.66
    float shadow = 0.0F;           ///< slope added below 0.33; exactly 0 skips it
    /// Row-major matrix on linear R, G, B columns; none at exactly 6500 K. Held by value, so that gradings prepared on
    /// several threads never meet.
    std::optional<std::array<float, 9>> whiteBalance;
    float hue = 0.0F;                           ///< degrees; exactly 0 skips it
    float saturation = 0.0F;                    ///< factor on the distance from luma; 1 keeps colour
    const ColorGradient* gradientMap = nullptr; ///< the grading's own; not owned
    float gradientMapIntensity = 0.0F;          ///< 0 to 1; exactly 0 skips it
};

/// Grading settings and their application.
///
/// The operation works in linear light, always in this order: exposure, contrast, highlights, shadows, white balance,
/// hue, saturation, gradient map. Setters limit a value to its range: above the maximum gives the maximum, below the
/// minimum the minimum; a NaN passes through and makes NaN pixels.
///
/// | setting | effect |
/// |---|---|
/// | exposure, in stops | multiplies by 2^exposure |
/// | contrast | power curve through 0.5 with exponent tan(contrast * pi / 2) |
/// | highlight | c + (c - 0.66) * highlight above 0.66 |
/// | shadow | max(0, c + (0.33 - c) * shadow) below 0.33 |
/// | temperature, in kelvin | Bradford adaptation from the daylight white of that temperature to D65 |
/// | hue, in degrees | turns hue in CIE LCh(uv) |
/// | saturation | distance from luma |
/// | gradient map intensity | blend towards the gradient's colour at the pixel's luma |
///
/// Their ranges and neutral values, which are the defaults, are in ParameterRanges.h.
///
/// A plain value. Thread-safety: const methods may be called from several threads, also apply and the tables.
/// @ingroup grading
class ZQX_IMG_API ColorGrading {
public:
    /// All settings neutral.
    ColorGrading() = default;
    /// @{

    /// All settings are copied or moved, the gradient map among them.
    ColorGrading(const ColorGrading&) = default;
    ColorGrading(ColorGrading&&) noexcept = default;
    ColorGrading& operator=(const ColorGrading&) = default;
    ColorGrading& operator=(ColorGrading&&) noexcept = default;
    /// @}
    ~ColorGrading() = default;

    /// @name Settings as they are kept: within their ranges
    /// @{

    /// Stops.
    float getExposure() const { return mExposure; }
    /// Contrast.
    float getContrast() const { return mContrast; }
    /// Slope added above 0.66.
    float getHighlight() const { return mHighlight; }
    /// Slope added below 0.33.
    float getShadow() const { return mShadow; }
    /// Kelvin.
    float getTemperature() const { return mTemperature; }
    /// Degrees.
    float getHue() const { return mHue; }
    /// Factor on the distance from luma.
    float getSaturation() const { return mSaturation; }
    /// Weight of the gradient's colours.
    float getGradientMapIntensity() const { return mGradientMapIntensity; }
    /// The gradient, also while its weight is 0. Owned by the grading.
    const ColorGradient& getGradientMap() const { return mGradientMap; }
    /// @}

    /// @name Setters, which limit a value to its range
    /// @{

    /// @param stops within range::EXPOSURE; each doubles linear light, 0 leaves it
    void setExposure(float stops);
    /// @param contrast within range::CONTRAST: 0 is flat, 0.5 leaves the picture, 1 makes a channel either 0 or far too
    /// bright
    void setContrast(float contrast);
    /// @param highlight within range::HIGHLIGHT: -1 makes everything above 0.66 equal to it, 0 leaves it, above it gets
    /// steeper
    void setHighlight(float highlight);
    /// @param shadow within range::SHADOW: 1 makes everything below 0.33 equal to it, 0 leaves it, below it gets
    /// steeper
    void setShadow(float shadow);
    /// @param kelvin within range::TEMPERATURE: the light that the picture is corrected for. Below 6500 it turns bluer,
    /// above
    ///        yellower; exactly 6500 leaves it
    void setTemperature(float kelvin);
    /// @param degrees within range::HUE, counter-clockwise in the plane of u* and v*; 0 leaves the picture
    void setHue(float degrees);
    /// @param factor within range::SATURATION: 0 gives greys, 1 leaves the picture
    void setSaturation(float factor);
    /// @param weight within range::GRADIENT_MAP_INTENSITY: 0 leaves the picture, 1 shows nothing but the gradient's
    /// colours
    void setGradientMapIntensity(float weight);
    /// @param gradient the colours for luma 0 to 1, in linear light; copied
    void setGradientMap(const ColorGradient& gradient);
    /// @}

    /// Orders by exposure, contrast, highlight, shadow, temperature, hue, saturation and gradient map intensity with
    /// exact float equality, then by the gradient maps. With a NaN in the first settings that differ the result is 1.
    int compare(const ColorGrading& other) const;

    /// Grades every pixel of the source into the destination, converting between their formats on the way.
    ///
    /// The destination has the source's width and height; any strides. Nothing is checked; an unknown format does
    /// nothing. A grey destination stores the graded red channel. Alpha passes ungraded. 8-bit colour is encoded as
    /// by Image::convertTo, so even neutral settings may move an 8-bit code by one. Where hue is turned, black pixels
    /// have no hue and become NaN in float destinations and 0 in 8-bit ones. Source and destination may be the same
    /// image; otherwise they must not overlap.
    void apply(const Image& source, Image& destination) const;

    /// Bakes the grading into size^3 entries of three floats over linear input (r, g, b) / (size - 1).
    ///
    /// Red varies fastest, then green, then blue. Entries are neither limited nor encoded.
    /// @param size points along each axis
    /// @param pLUT the caller's buffer of 3 * size^3 floats; with size 0 nothing is written, with size 1 the entry is
    /// NaN
    void generate3DLUT_RGB32F(std::size_t size, float* pLUT) const;

    /// Bakes the grading into size^3 entries of three bytes over gamma-encoded input (r, g, b) / (size - 1), decoded
    /// with the pure power 2.2; entries are encoded with the power 1/2.2 and truncated. Layout as for floats.
    /// @param size points along each axis
    /// @param pLUT the caller's buffer of 3 * size^3 bytes
    void generate3DLUT_SRGB8(std::size_t size, unsigned char* pLUT) const;

private:
    ColorGradingParamsInternal prepareParams() const;

    float mExposure = range::EXPOSURE.neutral;
    float mContrast = range::CONTRAST.neutral;
    float mHighlight = range::HIGHLIGHT.neutral;
    float mShadow = range::SHADOW.neutral;
    float mTemperature = range::TEMPERATURE.neutral;
    float mHue = range::HUE.neutral;
    float mSaturation = range::SATURATION.neutral;
    float mGradientMapIntensity = range::GRADIENT_MAP_INTENSITY.neutral;
    ColorGradient mGradientMap;
};

} // namespace zqx::img
