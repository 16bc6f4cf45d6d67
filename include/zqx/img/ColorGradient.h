/// @file
/// The gradient map of colour grading: colour stops and the 256-entry table sampled from them.
#pragma once

#include <vector>

#include <zqx/img/Color.h>
#include <zqx/img/Export.h>

namespace zqx::img {

/// Colour stops spread evenly over luma 0 to 1, and their table of 256 linearly interpolated entries.
///
/// Stops are used as they are: no conversion between encodings, alpha interpolated like colour. There are always at
/// least two stops. A plain value; a moved-from gradient keeps its table.
///
/// Thread-safety: const methods may be called from several threads.
/// @ingroup grading
class ZQX_IMG_API ColorGradient {
public:
    /// Black to white, both opaque.
    ColorGradient();
    /// Two stops.
    ColorGradient(const Color& first, const Color& second);
    /// Any number of stops, first for luma 0. An empty list gives black to white, a single stop c gives c to white.
    ///
    /// Stop k of n lies at table index trunc(k / (n - 1) * 255) in single precision. More than 256 stops cannot all
    /// have an entry of their own; those that share an index leave entries that are not meaningful.
    explicit ColorGradient(const std::vector<Color>& colors);

    /// @{

    /// Stops and table are copied or moved; a gradient that was moved from still has its table, but no stops.
    ColorGradient(const ColorGradient&) = default;
    ColorGradient(ColorGradient&&) noexcept = default;
    ColorGradient& operator=(const ColorGradient&) = default;
    ColorGradient& operator=(ColorGradient&&) noexcept = default;
    /// @}
    ~ColorGradient() = default;

    /// Table entry for luma index / 255.
    const Color& getColorAt(const unsigned char& index) const { return mLUT[index]; }
    /// The 256 entries, consecutive, as r, g, b, a floats. Owned by the gradient.
    const Color* getLUTPtr() const { return mLUT; }

    /// Orders by the number of stops, then stop by stop with Color::compare. The table is not compared.
    int compare(const ColorGradient& other) const;

private:
    void updateLUT();

    std::vector<Color> mColors;
    Color mLUT[256];
};

} // namespace zqx::img
