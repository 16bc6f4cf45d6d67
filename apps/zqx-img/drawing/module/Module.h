// What the program and its drawing module know of each other. They are built and installed together.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "drawing/Canvas.h"
#include "terminal/TerminalPicture.h"

namespace zqx::app::drawing {

struct Functions {
    /// A canvas over foreign pixels, 0xRRGGBB each, packed rows from the top. @throws std::bad_alloc
    std::unique_ptr<Canvas> (*makeCanvas)(std::uint32_t* pixels, int width, int height);

    /// What to write to a terminal to have it show the picture. @throws std::bad_alloc
    std::string (*encodeForTerminal)(const TerminalPicture& picture);
};

/// The one symbol that the module exports. A module of another version has another name for it.
using GetFunctions = const Functions*();

} // namespace zqx::app::drawing
