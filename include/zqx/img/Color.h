/// @file
/// A colour as four floats, and the table that decodes gamma-encoded bytes.
#pragma once

#include <zqx/img/Export.h>

namespace zqx::img {

/// A colour of four single-precision components.
///
/// Whether r, g and b are linear light or gamma-encoded is the owner's business; alpha is always linear and
/// straight (not premultiplied). Components are not limited to [0, 1].
///
/// A plain value: trivially copyable, safe to read from several threads.
/// @ingroup image
struct ZQX_IMG_API Color {
    float r = 0.0F; ///< red
    float g = 0.0F; ///< green
    float b = 0.0F; ///< blue
    float a = 0.0F; ///< alpha: 0 transparent, 1 opaque

    /// Orders two colours by r, then g, then b, then a, with exact float equality.
    /// @return -1 when the first component that differs is smaller here, 1 otherwise (also when a NaN is involved),
    ///         0 when all four are equal.
    int compare(const Color& other) const;

    /// Encodes linear light with the pure power 1/2.2 (single-precision exponent 0.45454544), component by component.
    /// Nothing is clamped (a negative component gives NaN); alpha is copied.
    Color toSrgb() const;

    /// Decodes gamma-encoded components with the pure power 2.2. Nothing is clamped; alpha is copied.
    Color toLinear() const;
};

/// Decodes one gamma-encoded byte into linear light: (v / 255)^2.2 rounded to the nearest float, from a table.
///
/// The curve is the pure power 2.2, not the piecewise curve of IEC 61966-2-1. Thread-safe.
/// @ingroup image
ZQX_IMG_API float srgb2linear(const unsigned char& v);

} // namespace zqx::img
