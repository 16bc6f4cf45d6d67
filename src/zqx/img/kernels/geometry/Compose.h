// Images put together from others: in rectangles, halves, and over a ground.
#pragma once

#include <cstdint>
#include <span>

#include <zqx/img/Image.h>
#include <zqx/img/TiledFilter.h>

namespace zqx::img::kernels {

/// Gives all pixels of a rectangle the bytes of one. @param pixel as many bytes as a pixel of the format has
void fillRectangle(const Image& image, const Tile& rectangle, std::span<const std::uint8_t> pixel);

/// Converts an image into another one of its size, as Image::convertFrom does; one with alpha comes to lie over a grey
/// ground, in linear light. What is opaque keeps every bit.
/// @param ground linear light, of all three colours
void placeOver(const Image& source, const Image& target, float ground);

/// Puts the left half of an image into another one of its size and format, and a white line, two pixels wide, where the
/// halves meet.
void splitWith(const Image& left, const Image& image);

} // namespace zqx::img::kernels
