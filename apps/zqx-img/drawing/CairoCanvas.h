// Drawing with Cairo.
#pragma once

#include <cstdint>
#include <memory>

#include "../Canvas.h"

namespace zqx::img::app::drawing {

std::unique_ptr<Canvas> makeCanvas(std::uint32_t* pixels, int width, int height);

} // namespace zqx::img::app::drawing
