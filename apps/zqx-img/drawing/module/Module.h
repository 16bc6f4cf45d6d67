// The interface between the program and its drawing module, which are built and installed together.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "drawing/Canvas.h"
#include "terminal/TerminalPicture.h"

namespace zqx::app::drawing {

struct Functions {
    /// A canvas over the caller's pixels, 0xRRGGBB each, packed rows from the top. @throws std::bad_alloc
    std::unique_ptr<Canvas> (*makeCanvas)(std::uint32_t* pixels, int width, int height);

    /// The bytes that make a terminal show the picture. @throws std::bad_alloc
    std::string (*encodeForTerminal)(const TerminalPicture& picture);
};

/// The only exported symbol. Its name contains the version.
using GetFunctions = const Functions*();

} // namespace zqx::app::drawing
