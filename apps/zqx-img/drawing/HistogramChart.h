// A histogram as a picture.
#pragma once

#include <string>

#include "zqx/pictures/PixelBuffer.h"
#include <zqx/tools/Histogram.h>

namespace zqx::app {

/// Colour of 8 bits: the channels' light over each other, luma as a line, scales of stored values and of stops, and
/// the shares of clipped values. @throws Error when nothing can be drawn
/// @param title what was counted
/// @param subtitle more about it
pictures::PixelBuffer drawChart(const tools::Histogram& histogram, const std::string& title,
                                const std::string& subtitle);

} // namespace zqx::app
