// Pictures for terminals. They are encoded by a module that is loaded when first needed.
#pragma once

#include <cstddef>

namespace zqx::app {

/// Graphics protocols of terminals. SYMBOLS, coloured characters, works everywhere.
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
