// Bringing the result of a tile into a picture: plain, or cross-faded with what is there.
#pragma once

#include <zqx/img/Image.h>
#include <zqx/img/TiledFilter.h>

namespace zqx::img::kernels {

/// How the weight of the new pixels grows over a rectangle, in even steps between 0 and 1, both excluded.
enum class Ramp {
    COLUMNS, ///< from left to right
    ROWS,    ///< from top to bottom
    CORNER,  ///< away from the left and the top edge: by the nearer of the two
};

/// Copies the pixels of a rectangle to the same place in the target, byte for byte: as many bytes of each as both pixel
/// strides leave room for.
void copyRectangle(const Image& src, const Image& target, const Tile& rectangle);

/// target = target * (1 - a) + src * a over a rectangle, for the three floats at the beginning of each pixel.
/// The part of a pixel that would reach beyond its row is left alone. A corner is square.
void blendRectangle(const Image& src, const Image& target, const Tile& rectangle, Ramp ramp);

} // namespace zqx::img::kernels
