// Pictures as a terminal shows them. What encodes them is in a module that is loaded when it is first needed.
#pragma once

#include <cstddef>

namespace zqx::app {

/// The ways of bringing a picture to a terminal. SYMBOLS works in all of them: coloured characters.
enum class TerminalProtocol { BEST, KITTY, ITERM, SIXEL, SYMBOLS };

/// The size of a terminal and of one of its character cells.
struct TerminalSize {
    unsigned columns;
    unsigned rows;
    unsigned cellWidth; ///< in pixels
    unsigned cellHeight;
};

struct TerminalPicture {
    const unsigned char* rgba; ///< encoded bytes R, G, B, A, rows from the top and packed
    unsigned width;
    unsigned height;
    TerminalSize terminal;
    TerminalProtocol protocol; ///< BEST asks the environment which one the terminal knows
    bool unicode;              ///< false: characters are plain ASCII
};

} // namespace zqx::app
