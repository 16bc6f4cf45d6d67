/// @file
/// How the samples of a picture are stored in a file, and in what form they are worked on.
#pragma once

#include <cstddef>

#include <zqx/img/Image.h>
#include <zqx/pictures/Export.h>

namespace zqx::pictures {

/// Channels, depth and encoding of the samples in a picture file.
///
/// Pictures of the first six layouts are worked on as they are stored, each in one format of img::Image. The others
/// exist in files alone: 16-bit samples become linear floats in memory, of which every code comes back, and palettes
/// become 8-bit colour. Floats are linear light; 8-bit and 16-bit colour is encoded by the power 1/2.2; alpha is always
/// linear.
/// @ingroup pictures
enum class SampleLayout {
    GRAY8,    ///< 8-bit grey
    RGB8,     ///< 8-bit colour
    RGBA8,    ///< 8-bit colour with alpha
    GRAY32F,  ///< float grey
    RGB32F,   ///< float colour
    RGBA32F,  ///< float colour with alpha
    GRAY16,   ///< 16-bit grey, GRAY32F in memory
    RGB16,    ///< 16-bit colour, RGB32F in memory
    RGBA16,   ///< 16-bit colour with alpha, RGBA32F in memory
    PALETTE8, ///< up to 256 colours, RGB8 in memory
};

/// How many layouts there are.
/// @ingroup pictures
constexpr std::size_t SAMPLE_LAYOUT_COUNT = static_cast<std::size_t>(SampleLayout::PALETTE8) + 1;

/// The layout that pictures of a stored layout have in memory: one of the first six.
/// @ingroup pictures
ZQX_PICTURES_EXPORT SampleLayout workingLayout(SampleLayout layout);

/// The image format that new pixels of a layout are allocated in; blue comes first in 8-bit colour.
/// @ingroup pictures
ZQX_PICTURES_EXPORT img::Image::Format workingFormat(SampleLayout layout);

/// The layout of an image's pixels: one of the first six. Linear 8-bit formats count as their encoded counterparts.
/// @ingroup pictures
ZQX_PICTURES_EXPORT SampleLayout layoutOf(const img::Image& image);

/// True for layouts with red, green and blue.
/// @ingroup pictures
ZQX_PICTURES_EXPORT bool hasColor(SampleLayout layout);
/// True for layouts with an alpha channel.
/// @ingroup pictures
ZQX_PICTURES_EXPORT bool hasAlpha(SampleLayout layout);
/// True for layouts that hold linear light in 32-bit floats.
/// @ingroup pictures
ZQX_PICTURES_EXPORT bool isFloat(SampleLayout layout);
/// Channels of a pixel: 1, 3 or 4. Those of a palette are the channels of its colours.
/// @ingroup pictures
ZQX_PICTURES_EXPORT std::size_t channelCount(SampleLayout layout);
/// Bits of a channel: 8, 16, or 32 for floats.
/// @ingroup pictures
ZQX_PICTURES_EXPORT int bitsPerChannel(SampleLayout layout);
/// In words for people, "8-bit grey".
/// @ingroup pictures
ZQX_PICTURES_EXPORT const char* nameOf(SampleLayout layout);

} // namespace zqx::pictures
