// Drawing with Cairo.
#pragma once

#include <cstdint>
#include <memory>

#include "drawing/Canvas.h"

namespace zqx::app::drawing {

std::unique_ptr<Canvas> makeCanvas(std::uint32_t* pixels, int width, int height);

} // namespace zqx::app::drawing
