/// @file
/// A picture in memory: pixels and metadata.
#pragma once

#include <zqx/pictures/Export.h>
#include <zqx/pictures/Metadata.h>
#include <zqx/pictures/PixelBuffer.h>
#include <zqx/pictures/SampleLayout.h>

namespace zqx::pictures {

/// How the colours of a picture relate to its alpha.
/// @ingroup pictures
enum class AlphaKind {
    STRAIGHT,        ///< independent of alpha
    PREMULTIPLIED,   ///< multiplied by alpha, as in OpenEXR files; only in RGBA32F
    UNPREMULTIPLIED, ///< divided by alpha after reading; where alpha is 0, colour is emitted light
};

/// A decoded picture.
///
/// The pixels are upright, top row first, in one of the formats SGRAY8, SRGB8, SBGR8, SRGBA8, SBGRA8, GRAY32F, RGB32F
/// and RGBA32F. A picture owns its pixels; it can be moved but not copied. It must not be used by several threads at
/// once.
/// @ingroup pictures
struct Picture {
    PixelBuffer pixels;                       ///< the pixels and their memory
    SampleLayout stored = SampleLayout::RGB8; ///< layout in the source file, and so the best layout for a copy
    AlphaKind alpha = AlphaKind::STRAIGHT;    ///< how the colours relate to alpha
    Metadata metadata;                        ///< profile, resolution, Exif and so on

    /// The pixels, to be read.
    const img::Image& image() const { return pixels.image(); }
    /// The pixels, to be changed in place.
    img::Image& image() { return pixels.image(); }
    /// Width in pixels.
    unsigned width() const { return pixels.width(); }
    /// Height in pixels.
    unsigned height() const { return pixels.height(); }
};

} // namespace zqx::pictures
