/// @file
/// A picture in memory, with what has to travel beside its pixels.
#pragma once

#include <zqx/pictures/Export.h>
#include <zqx/pictures/Metadata.h>
#include <zqx/pictures/PixelBuffer.h>
#include <zqx/pictures/SampleLayout.h>

namespace zqx::pictures {

/// What the colours of a picture with alpha are.
/// @ingroup pictures
enum class AlphaKind {
    STRAIGHT,        ///< independent of alpha
    PREMULTIPLIED,   ///< multiplied by alpha, as OpenEXR files hold them: only in RGBA32F
    UNPREMULTIPLIED, ///< divided by alpha after reading; where alpha is 0 the colour is light of its own
};

/// A decoded picture.
///
/// The pixels are upright, top row first, in one of the formats SGRAY8, SRGB8, SBGR8, SRGBA8, SBGRA8, GRAY32F, RGB32F
/// and RGBA32F. A picture owns its pixels; it can be moved, not copied. One thread at a time.
/// @ingroup pictures
struct Picture {
    PixelBuffer pixels;                       ///< what the picture shows
    SampleLayout stored = SampleLayout::RGB8; ///< what its file holds, and what a copy of it should hold
    AlphaKind alpha = AlphaKind::STRAIGHT;    ///< how colours relate to alpha
    Metadata metadata;                        ///< what travels beside the pixels

    /// The pixels, for operations of the engine.
    const img::Image& image() const { return pixels.image(); }
    /// The same, for operations that change pixels in place.
    img::Image& image() { return pixels.image(); }
    /// Pixels in a row.
    unsigned width() const { return pixels.width(); }
    /// Rows.
    unsigned height() const { return pixels.height(); }
};

} // namespace zqx::pictures
