/// @file
/// Sample layouts: the channels, bit depth and encoding of pixels, in files and in memory.
#pragma once

#include <cstddef>

#include <zqx/img/Image.h>
#include <zqx/pictures/Export.h>

namespace zqx::pictures {

/// Channels, bit depth and encoding of the samples in a picture file.
///
/// The first six are working layouts: pictures keep them in memory, each in one format of img::Image. The others exist
/// in files only: 16-bit samples become linear floats in memory, from which every code is restored exactly, and
/// palettes become 8-bit colour. Floats are linear light; 8-bit and 16-bit colour is gamma-encoded with the exponent
/// 1/2.2; alpha is always linear.
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

/// The number of layouts.
/// @ingroup pictures
constexpr std::size_t SAMPLE_LAYOUT_COUNT = static_cast<std::size_t>(SampleLayout::PALETTE8) + 1;

/// The working layout of a stored layout, that is, the one that such pictures have in memory.
/// @ingroup pictures
ZQX_PICTURES_EXPORT SampleLayout workingLayout(SampleLayout layout);

/// The image format in which new pixels of a layout are allocated; 8-bit colour is stored blue first.
/// @ingroup pictures
ZQX_PICTURES_EXPORT img::Image::Format workingFormat(SampleLayout layout);

/// The working layout of an image. Linear 8-bit formats count as their gamma-encoded counterparts.
/// @ingroup pictures
ZQX_PICTURES_EXPORT SampleLayout getLayout(const img::Image& image);

/// Whether a layout has red, green and blue channels.
/// @ingroup pictures
ZQX_PICTURES_EXPORT bool hasColor(SampleLayout layout);
/// Whether a layout has an alpha channel.
/// @ingroup pictures
ZQX_PICTURES_EXPORT bool hasAlpha(SampleLayout layout);
/// Whether a layout stores linear light as 32-bit floats.
/// @ingroup pictures
ZQX_PICTURES_EXPORT bool isFloat(SampleLayout layout);
/// The number of channels: 1, 3 or 4. For palettes, that of their colours.
/// @ingroup pictures
ZQX_PICTURES_EXPORT std::size_t channelCount(SampleLayout layout);
/// The number of bits per channel: 8, 16, or 32 for floats.
/// @ingroup pictures
ZQX_PICTURES_EXPORT int bitsPerChannel(SampleLayout layout);
/// A description for people, such as "8-bit grey".
/// @ingroup pictures
ZQX_PICTURES_EXPORT const char* getName(SampleLayout layout);

} // namespace zqx::pictures
