// Flips and rotations: pixels moved whole, whatever they hold. Pixels are packed within a row.
#pragma once

#include <zqx/img/Image.h>

namespace zqx::img::kernels {

void mirrorColumns(const Image& image);
void mirrorRows(const Image& image);

/// The target has the source's format and, for the quarter turns, its width and height exchanged.
void turnClockwise(const Image& source, const Image& target);
void turnAround(const Image& source, const Image& target);
void turnCounterClockwise(const Image& source, const Image& target);

} // namespace zqx::img::kernels
