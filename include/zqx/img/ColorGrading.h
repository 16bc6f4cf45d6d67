// Colour grading: the settings a user moves, and their application to images and lookup tables.
#pragma once

#include <array>
#include <cstddef>
#include <optional>

#include <zqx/img/ColorGradient.h>
#include <zqx/img/Export.h>
#include <zqx/img/Image.h>

namespace zqx::img {

/// Grading settings turned into what the per-pixel operation consumes, computed once per image.
///
/// Refers to the ColorGrading it was prepared from: valid while that is alive and unchanged.
struct ColorGradingParamsInternal {
    float exposureFactor = 1.0F;   ///< linear multiplier, 2^exposure
    float contrastExponent = 1.0F; ///< exponent of the contrast curve; exactly 1 skips it
    float highlight = 0.0F;
    float shadow = 0.0F;
    /// Row-major matrix on linear R, G, B columns; none at exactly 6500 K. Held by value, so that gradings prepared on
    /// several threads never meet.
    std::optional<std::array<float, 9>> whiteBalance;
    float hue = 0.0F; ///< degrees
    float saturation = 0.0F;
    const ColorGradient* gradientMap = nullptr;
    float gradientMapIntensity = 0.0F;
};

/// Grading settings and their application.
///
/// The operation works in linear light, always in this order: exposure, contrast, highlights, shadows, white balance,
/// hue, saturation, gradient map. Setters limit a value to its range: above the maximum gives the maximum, below the
/// minimum the minimum; a NaN passes through and makes NaN pixels.
///
/// | setting | range | neutral (default) | effect |
/// |---|---|---|---|
/// | exposure | -5 to 5 stops | 0 | multiplies by 2^exposure |
/// | contrast | 0 to 1 | 0.5 | power curve through 0.5 with exponent tan(contrast * pi / 2) |
/// | highlight | -1 to 8 | 0 | c + (c - 0.66) * highlight above 0.66 |
/// | shadow | -8 to 1 | 0 | max(0, c + (0.33 - c) * shadow) below 0.33 |
/// | temperature | 2500 to 10500 K | 6500 | Bradford adaptation from the daylight white of that temperature to D65 |
/// | hue | -180 to 180 degrees | 0 | turns hue in CIE LCh(uv) |
/// | saturation | 0 to 2 | 1 | distance from luma |
/// | gradient map intensity | 0 to 1 | 0 | blend towards the gradient's colour at the pixel's luma |
///
/// A plain value. Thread-safety: const methods may be called from several threads, also apply and the tables.
class ZQX_IMG_API ColorGrading {
public:
    ColorGrading() = default;
    ColorGrading(const ColorGrading&) = default;
    ColorGrading(ColorGrading&&) noexcept = default;
    ColorGrading& operator=(const ColorGrading&) = default;
    ColorGrading& operator=(ColorGrading&&) noexcept = default;
    ~ColorGrading() = default;

    float getExposure() const { return mExposure; }
    float getContrast() const { return mContrast; }
    float getHighlight() const { return mHighlight; }
    float getShadow() const { return mShadow; }
    float getTemperature() const { return mTemperature; }
    float getHue() const { return mHue; }
    float getSaturation() const { return mSaturation; }
    float getGradientMapIntensity() const { return mGradientMapIntensity; }
    const ColorGradient& getGradientMap() const { return mGradientMap; }

    void setExposure(float stops);
    void setContrast(float contrast);
    void setHighlight(float highlight);
    void setShadow(float shadow);
    void setTemperature(float kelvin);
    void setHue(float degrees);
    void setSaturation(float factor);
    void setGradientMapIntensity(float weight);
    void setGradientMap(const ColorGradient& gradient);

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
    /// @param pLUT the caller's buffer of 3 * size^3 floats; with size 0 nothing is written, with size 1 the entry is
    /// NaN
    void generate3DLUT_RGB32F(std::size_t size, float* pLUT) const;

    /// Bakes the grading into size^3 entries of three bytes over gamma-encoded input (r, g, b) / (size - 1), decoded
    /// with the pure power 2.2; entries are encoded with the power 1/2.2 and truncated. Layout as for floats.
    /// @param pLUT the caller's buffer of 3 * size^3 bytes
    void generate3DLUT_SRGB8(std::size_t size, unsigned char* pLUT) const;

private:
    ColorGradingParamsInternal prepareParams() const;

    float mExposure = 0.0F;
    float mContrast = 0.5F;
    float mHighlight = 0.0F;
    float mShadow = 0.0F;
    float mTemperature = 6500.0F;
    float mHue = 0.0F;
    float mSaturation = 1.0F;
    float mGradientMapIntensity = 0.0F;
    ColorGradient mGradientMap;
};

} // namespace zqx::img
