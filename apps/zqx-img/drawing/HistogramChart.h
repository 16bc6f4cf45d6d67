// A histogram as a picture.
#pragma once

#include <string>

#include "zqx/pictures/PixelBuffer.h"
#include <zqx/tools/Histogram.h>

namespace zqx::app {

/// Draws a histogram in 8-bit colour: the channels blended over each other, luma as a line, scales of stored values and
/// of stops, and the shares of clipped values.
/// @param title usually the file name
/// @param subtitle further information about the picture
/// @throws Error if the drawing module cannot be loaded
pictures::PixelBuffer drawChart(const tools::Histogram& histogram, const std::string& title,
                                const std::string& subtitle);

} // namespace zqx::app
