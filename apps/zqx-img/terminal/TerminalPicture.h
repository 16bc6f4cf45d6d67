// Pictures to be shown in a terminal. A module that is loaded when it is first needed encodes them.
#pragma once

#include <cstddef>

namespace zqx::app {

/// Graphics protocols of terminals. SYMBOLS uses coloured characters and works everywhere.
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
    TerminalProtocol protocol; ///< BEST selects one by the environment
    bool unicode;              ///< whether characters beyond ASCII may be used
};

} // namespace zqx::app
